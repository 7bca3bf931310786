#pragma once

// CResolutionDef: one printing resolution of a printer definition, read from
// its "RES" element:
//
//   <RES visible="1">
//   	<RESLABEL>720 x 720</RESLABEL>
//   	<RESPROC>Res720x720</RESPROC>
//   	<BITSPERPIXEL>2</BITSPERPIXEL>
//   	<RESX>720</RESX>
//   	<RESY>720</RESY>
//   	<VOLUMEPERPIXEL>4.2</VOLUMEPERPIXEL>
//   	<INKDENSITY_RANGE min="20" max="120"/>
//   	<VALIDDOTSIZE>S,M,L</VALIDDOTSIZE>
//   	<FENCEPOINTS>...</FENCEPOINTS>
//   </RES>

#include <pugixml.hpp>

#include <memory>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

class CPMFencePointData;

class TARN_API CResolutionDef {
 public:
  // All fields at their defaults, no fence points.
  CResolutionDef();
  // Copies every field and a deep copy of the fence points (when there are any).
  CResolutionDef(const CResolutionDef& other);
  CResolutionDef& operator=(const CResolutionDef& other);
  CResolutionDef(CResolutionDef&& other) noexcept;
  CResolutionDef& operator=(CResolutionDef&& other) noexcept;
  virtual ~CResolutionDef();

  // Restores the defaults, except the valid dot size text, which a re-read
  // keeps unless the element gives a new one. The fence-point record is let go
  // without being deleted: a pointer obtained from GetFencePoints stays valid.
  void SetDefaults();

  // Reads a "RES" element; false only for a null node. Malformed numbers read
  // as 0; unknown children are skipped.
  bool ReadXML(const pugi::xml_node& node);

  // The fence-point record of this resolution, or null; owned by the record.
  const CPMFencePointData* GetFencePoints() const { return m_fencePoints; }
  CPMFencePointData* GetFencePoints() { return m_fencePoints; }

  // The label is the key of the resolution in its printer's map.
  const std::wstring& GetName() const { return m_label; }
  const std::wstring& GetLabel() const { return m_label; }
  const std::wstring& GetProcedure() const { return m_procedure; }
  int GetBitsPerPixel() const { return m_bitsPerPixel; }
  int GetResolutionX() const { return m_resX; }
  int GetResolutionY() const { return m_resY; }
  bool IsVisible() const { return m_visible; }
  const std::wstring& GetVolumePerPixel() const { return m_volumePerPixel; }
  // 1 marks an FM (frequency-modulated) resolution. Not kept in the element:
  // the host sets it from its screening set-up.
  int GetScreeningKind() const { return m_screeningKind; }
  bool IsFM() const { return m_screeningKind == 1; }
  // Host-defined flag, carried with the record and never read from the file.
  bool GetSecondFlag() const { return m_secondFlag; }
  int GetInkDensityMin() const { return m_inkDensityMin; }
  int GetInkDensityMax() const { return m_inkDensityMax; }
  const std::wstring& GetValidDotSize() const { return m_validDotSize; }

  void SetLabel(const std::wstring& label) { m_label = label; }
  void SetProcedure(const std::wstring& procedure) { m_procedure = procedure; }
  void SetBitsPerPixel(int bits) { m_bitsPerPixel = bits; }
  void SetResolution(int x, int y) {
    m_resX = x;
    m_resY = y;
  }
  void SetVisible(bool visible) { m_visible = visible; }
  void SetScreeningKind(int kind) { m_screeningKind = kind; }
  void SetSecondFlag(bool flag) { m_secondFlag = flag; }
  void SetValidDotSize(const std::wstring& text) { m_validDotSize = text; }
  // Gives the resolution a copy of fencePoints (null removes them); an
  // earlier record stays alive, as with a re-read.
  void SetFencePoints(const CPMFencePointData* fencePoints);

 private:
  void CopyFrom(const CResolutionDef& other);
  // Makes fresh, default fence points current, keeping the old ones alive.
  CPMFencePointData* NewFencePoints();
  void DropFencePoints();

  std::wstring m_label;
  std::wstring m_procedure;
  int m_bitsPerPixel = 0;
  int m_resX = 0;
  int m_resY = 0;
  bool m_visible = true;
  std::wstring m_volumePerPixel;
  int m_screeningKind = 0;
  bool m_secondFlag = false;
  int m_inkDensityMin = 0;
  int m_inkDensityMax = 0;
  std::wstring m_validDotSize;
  // The current fence points: null, or one of m_fencePointRecords.
  CPMFencePointData* m_fencePoints = nullptr;
  // Every fence-point record this resolution ever made. SetDefaults and a
  // repeated "FENCEPOINTS" only drop the reference (callers may still hold the
  // old record), so the records are kept here and deleted with the resolution.
  std::vector<std::unique_ptr<CPMFencePointData>> m_fencePointRecords;
};

}  // namespace tarn
