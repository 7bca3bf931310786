#pragma once

// A media definition (.qmd): one medium a printer prints on, a roll, a sheet, a
// fixed size or a template (a sheet cut into slots, one image a slot). Sizes
// are PostScript points, 72 to the inch.
//
//   <?xml version="1.0"?>
//   <XMEDIA>
//   	<Name>Labels_3x2</Name>
//   	<Version>1</Version>
//   	<Copyright>...</Copyright>
//   	<Type>2</Type>
//   	<Width>595.27559055118104</Width>
//   	<Height>841.88976377952747</Height>
//   	<LMargin>0</LMargin> ... <YSpacing>0</YSpacing>
//   	<Locked>0</Locked>
//   	<TEMPLATE_BASE></TEMPLATE_BASE>
//   	<TEMPLATE_QUICKSET><HSpace>9</HSpace> ... <FillOrder>0</FillOrder></TEMPLATE_QUICKSET>
//   	<SLOTS><SLOT item="1" ...>18.000,18.000,180.000,252.000</SLOT> ...</SLOTS>
//   	<BookTemplate>0</BookTemplate>
//   	<CreepContent>0</CreepContent>
//   </XMEDIA>
//
// The PostScript texts are written only for locked media (and "PS" also for
// templates), the template elements only for templates, the quick-set only
// while it is in use and "PaperSizeName" only when not 0. The whole layout is
// in docs/formats/media.md.

#include <pugixml.hpp>

#include <cstdint>
#include <memory>
#include <string>

#include "tarn/foundation/export.h"
#include "tarn/media/template_slots.h"

namespace tarn {

class CPrintMedia;

// The quick-set of a template: a regular grid of equal slots, from which the
// template's slots are generated. Lengths in points.
class TARN_API CQTAData {
 public:
  static constexpr const char* kElementName = "TEMPLATE_QUICKSET";
  // GenerateTemplate refuses grids of more slots than this: a quick-set read
  // from a file must not make the library allocate without bound.
  static constexpr long long kMaxSlots = 1 << 16;

  CQTAData() = default;
  virtual ~CQTAData() = default;
  CQTAData(const CQTAData&) = default;
  CQTAData& operator=(const CQTAData&) = default;
  bool operator==(const CQTAData&) const = default;

  // Every value 0.
  void SetDefaults() { *this = CQTAData(); }

  // Reads a "TEMPLATE_QUICKSET" element, starting from the defaults; unknown
  // children are skipped. False only when node is not "TEMPLATE_QUICKSET".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "TEMPLATE_QUICKSET" with its nine values to parent.
  void WriteXML(pugi::xml_node parent) const;

  // A new template whose slots are the grid, numbered by fillOrder: 1 down the
  // columns, 2 one image in every slot, 3 by row, 4 by column, anything else
  // along the rows. The template's quick-set is in use and holds these nine
  // values; its page just holds the grid with the offsets as margins all round.
  // Null when the grid has no slot (a count below 1 across or down), a slot
  // size rounds to 0 at a thousandth of a point, or the grid has more than
  // kMaxSlots slots.
  std::unique_ptr<CPrintMedia> GenerateTemplate(int fillOrder) const;
  // The same with the quick-set's own fill order.
  std::unique_ptr<CPrintMedia> GenerateTemplate() const { return GenerateTemplate(m_fillOrder); }

  // Puts slot index of the grid into slot: its rectangle and its image number
  // for fillOrder (see GenerateTemplate); the placement settings are left as
  // they are. False, slot untouched, when slot is null, HNumber is below 1 or
  // index is outside the grid.
  bool GetSlotData(_SlotData* slot, int index, int fillOrder) const;

  double GetHSpace() const { return m_hSpace; }
  double GetVSpace() const { return m_vSpace; }
  double GetHOffset() const { return m_hOffset; }
  double GetVOffset() const { return m_vOffset; }
  int GetHNumber() const { return m_hNumber; }
  int GetVNumber() const { return m_vNumber; }
  double GetSlotWidth() const { return m_slotWidth; }
  double GetSlotHeight() const { return m_slotHeight; }
  int GetFillOrder() const { return m_fillOrder; }
  void SetSpacing(double horizontal, double vertical) {
    m_hSpace = horizontal;
    m_vSpace = vertical;
  }
  void SetOffset(double horizontal, double vertical) {
    m_hOffset = horizontal;
    m_vOffset = vertical;
  }
  void SetNumber(int across, int down) {
    m_hNumber = across;
    m_vNumber = down;
  }
  void SetSlotSize(double width, double height) {
    m_slotWidth = width;
    m_slotHeight = height;
  }
  void SetFillOrder(int fillOrder) { m_fillOrder = fillOrder; }

 private:
  struct Fields;  // the field table, in the source file

  double m_hSpace = 0.0;
  double m_vSpace = 0.0;
  double m_hOffset = 0.0;
  double m_vOffset = 0.0;
  std::int32_t m_hNumber = 0;
  std::int32_t m_vNumber = 0;
  double m_slotWidth = 0.0;
  double m_slotHeight = 0.0;
  std::int32_t m_fillOrder = 0;
};

class TARN_API CPrintMedia {
 public:
  static constexpr const char* kElementName = "XMEDIA";
  // The media file's extension.
  static constexpr const wchar_t* kExtension = L".qmd";
  // The height of rolls and of the default sheet: 1800 inches.
  static constexpr double kRollHeight = 129600.0;
  // 210 mm and 297 mm in points.
  static constexpr double kA4Width = 595.275590551181;
  static constexpr double kA4Height = 841.8897637795275;
  // The names of the default media.
  static constexpr const wchar_t* kDefaultRollName = L"Default_Roll";
  static constexpr const wchar_t* kDefaultSheetName = L"Default_Sheet";
  static constexpr const wchar_t* kDefaultTemplateName = L"Default_Template";
  // The fourteen characters a media name may not hold: a name is a file name,
  // and these would break it (or the PostScript that names the media).
  static constexpr const wchar_t* kForbiddenNameChars = L"/\\:*?\"<>|.{}[]";
  // The notice SetDefaults puts in "Copyright".
  static constexpr const wchar_t* kDefaultCopyright =
      L"Media definition of the tarn RIP data model. It may be copied and changed freely.";

  enum MEDIA_TYPE : std::int32_t { MEDIA_ROLL = 0, MEDIA_SHEET = 1, MEDIA_TEMPLATE = 2, MEDIA_FIXED = 3 };

  CPrintMedia() = default;
  virtual ~CPrintMedia() = default;
  CPrintMedia(const CPrintMedia&) = default;
  CPrintMedia& operator=(const CPrintMedia&) = default;

  // Equal in every field the file keeps, slots and quick-set included. The
  // path last read or written takes no part.
  bool operator==(const CPrintMedia& other) const;

  // All numbers 0, texts empty (the copyright the default notice), not locked,
  // no slots, quick-set not in use, paper size code 0.
  void SetDefaults();

  // --- defaults ---------------------------------------------------------
  // "Default_Roll": a roll widthPoints wide and kRollHeight long.
  void CreateDefaultRoll(double widthPoints);
  // "Default_Sheet": 210 mm wide and 1800 inches long (the length is meant),
  // with one slot over the whole sheet.
  void CreateDefaultSheet();
  // "Default_Template": an A4 page with one slot over the whole page.
  void CreateDefaultTemplate();
  // The default media of a kind (a roll of rollWidthPoints; a fixed size is
  // made like a sheet but keeps its kind). False for an unknown kind, the
  // media then reset to its defaults.
  bool MakeDefaultMedia(std::int32_t kind, double rollWidthPoints = 0.0);
  // Becomes a copy of other (the path it came from included).
  void CopyMedia(const CPrintMedia& other) { *this = other; }

  // --- validity -----------------------------------------------------------
  // False when the name is empty or the width rounds to 0 at a thousandth of
  // a point, and for a sheet when the height does. A roll that passes gets the
  // roll height kRollHeight, whatever it held.
  bool IsDataValid();
  // True when a margin is not 0 at a thousandth of a point.
  bool HasMargins() const;
  // Locked media come from their maker and are not edited.
  bool CanBeEdited() const { return !m_locked; }

  // --- files ----------------------------------------------------------------
  // Reads an "XMEDIA" element, starting from the defaults; unknown children are
  // skipped. A medium other than a template whose "PS" text is not empty is
  // locked afterwards, whatever "Locked" said. False only when node is not
  // "XMEDIA".
  virtual bool ReadXML(const pugi::xml_node& node);
  // Appends "XMEDIA" to parent. Returns true.
  virtual bool WriteXML(pugi::xml_node parent) const;
  // Replaces the slots with the "SLOT" children of a "SLOTS" element.
  bool ReadSlots(const pugi::xml_node& node) { return m_slots.ReadXML(node); }
  // Appends "SLOTS" to parent.
  void WriteSlots(pugi::xml_node parent) const { m_slots.WriteXML(parent); }

  // Loads the media file at path. False, the media reset to its defaults and
  // the reason in error when given ("permission denied", "not a media file"),
  // when it cannot be read or is not XML with the root "XMEDIA".
  bool ReadFile(const std::wstring& path, std::wstring* error = nullptr);
  // Writes folder + name + ".qmd" atomically (a separator is put after the
  // folder when it has none). Does nothing and returns false when the folder
  // or the name is empty, and refuses a name that is not a plain file name
  // (one that holds a character IsFileNameSafe refuses), so that nothing is
  // ever written outside the folder. On failure the old file is untouched and
  // the reason is in error when given.
  bool WriteFile(const std::wstring& folder, std::wstring* error = nullptr);
  // Loads folder + name + ".qmd".
  bool LoadDef(const std::wstring& folder, const std::wstring& name, std::wstring* error = nullptr);

  // True when name can be a media file's name: not empty and free of the
  // fourteen characters media names may not hold and of control characters.
  static bool IsFileNameSafe(const std::wstring& name);
  // False for the fourteen forbidden characters and for control characters.
  static bool IsFileNameChar(wchar_t c);
  // folder + name + ".qmd", with a separator after the folder when it has none.
  static std::wstring MakeFilePath(const std::wstring& folder, const std::wstring& name);

  // --- kind -----------------------------------------------------------------
  std::int32_t GetType() const { return m_type; }
  void SetType(std::int32_t type) { m_type = type; }
  bool IsRoll() const { return m_type == MEDIA_ROLL; }
  bool IsSheet() const { return m_type == MEDIA_SHEET; }
  bool IsTemplate() const { return m_type == MEDIA_TEMPLATE; }
  bool IsFixed() const { return m_type == MEDIA_FIXED; }
  // "roll", "sheet", "template", "fixed size", or "unknown kind".
  static const wchar_t* KindName(std::int32_t type);
  // A template named "Default_Template", or that followed by "_" and a suffix.
  bool IsDefaultTemplate() const;

  // --- names ----------------------------------------------------------------
  const std::wstring& GetName() const { return m_name; }
  void SetName(const std::wstring& name) { m_name = name; }
  // The name as PostScript and the media list see it: spaces as underscores.
  std::wstring GetPSName() const;
  // The file this media was last read from or written to; empty for media
  // made in memory.
  const std::wstring& GetFullPath() const { return m_path; }
  const std::wstring& GetVersion() const { return m_version; }
  void SetVersion(const std::wstring& version) { m_version = version; }
  const std::wstring& GetCopyright() const { return m_copyright; }
  void SetCopyright(const std::wstring& text) { m_copyright = text; }

  // --- geometry (points) --------------------------------------------------
  double GetWidth() const { return m_width; }
  double GetHeight() const { return m_height; }
  void SetSize(double width, double height) {
    m_width = width;
    m_height = height;
  }
  double GetLMargin() const { return m_lMargin; }
  double GetRMargin() const { return m_rMargin; }
  double GetTMargin() const { return m_tMargin; }
  double GetBMargin() const { return m_bMargin; }
  void SetLMargin(double value) { m_lMargin = value; }
  void SetRMargin(double value) { m_rMargin = value; }
  void SetTMargin(double value) { m_tMargin = value; }
  void SetBMargin(double value) { m_bMargin = value; }
  void SetMargins(double left, double right, double top, double bottom) {
    m_lMargin = left;
    m_rMargin = right;
    m_tMargin = top;
    m_bMargin = bottom;
  }
  double GetXSpacing() const { return m_xSpacing; }
  double GetYSpacing() const { return m_ySpacing; }
  void SetSpacing(double x, double y) {
    m_xSpacing = x;
    m_ySpacing = y;
  }

  // --- lock and PostScript ----------------------------------------------------
  bool IsLocked() const { return m_locked; }
  void SetLocked(bool locked) { m_locked = locked; }
  // The page set-up text ("PS").
  const std::wstring& GetPS() const { return m_ps; }
  void SetPS(const std::wstring& text) { m_ps = text; }
  const std::wstring& GetPSImageableArea() const { return m_psImageableArea; }
  void SetPSImageableArea(const std::wstring& text) { m_psImageableArea = text; }
  const std::wstring& GetPSDimension() const { return m_psDimension; }
  void SetPSDimension(const std::wstring& text) { m_psDimension = text; }
  // The imageable area as a media maker writes it: "llx lly urx ury" in
  // points, the sheet less its margins ("18.000 36.000 577.276 823.890").
  std::wstring MakePSImageableArea() const;
  // The sheet's size as "width height" in points ("595.276 841.890").
  std::wstring MakePSDimension() const;

  // --- template ---------------------------------------------------------------
  const std::wstring& GetTemplateBase() const { return m_templateBase; }
  void SetTemplateBase(const std::wstring& base) { m_templateBase = base; }
  const CQTAData& GetQuickSet() const { return m_quickSet; }
  bool IsQuickSetInUse() const { return m_quickSetInUse; }
  // Stores the quick-set and marks it in use.
  void SetQuickSet(const CQTAData& quickSet) {
    m_quickSet = quickSet;
    m_quickSetInUse = true;
  }
  void SetQuickSetInUse(bool inUse) { m_quickSetInUse = inUse; }
  CTemplateSlots& GetSlots() { return m_slots; }
  const CTemplateSlots& GetSlots() const { return m_slots; }
  int SlotCount() const { return static_cast<int>(m_slots.size()); }
  void ClearSlots() { m_slots.clear(); }
  // The origin of slot index; false, x and y untouched, when there is none.
  bool GetSlotOrigin(int index, double& x, double& y) const;
  bool IsBookTemplate() const { return m_bookTemplate; }
  void SetBookTemplate(bool on) { m_bookTemplate = on; }
  bool GetCreepContent() const { return m_creepContent; }
  void SetCreepContent(bool on) { m_creepContent = on; }

  // --- paper size code --------------------------------------------------------
  // The Windows paper size code of a sheet taken from an installed printer; 0 none.
  std::int16_t GetPaperSizeCode() const { return m_paperSizeCode; }
  void SetPaperSizeCode(std::int16_t code) { m_paperSizeCode = code; }

 private:
  struct Fields;  // the field table, in the source file
  // Resets to a page of that kind, name and size with one slot over all of it.
  void MakeOneSlotPage(std::int32_t type, const wchar_t* name, double width, double height);
  // The list keeps track of the file a media came from when it replaces it.
  friend class CPrintMediaList;

  std::wstring m_name;
  std::wstring m_version;
  std::wstring m_copyright = kDefaultCopyright;
  std::int32_t m_type = MEDIA_ROLL;
  double m_width = 0.0;
  double m_height = 0.0;
  double m_lMargin = 0.0;
  double m_rMargin = 0.0;
  double m_tMargin = 0.0;
  double m_bMargin = 0.0;
  double m_xSpacing = 0.0;
  double m_ySpacing = 0.0;
  bool m_locked = false;
  std::wstring m_ps;
  std::wstring m_psImageableArea;
  std::wstring m_psDimension;
  std::wstring m_templateBase;
  CQTAData m_quickSet;
  bool m_quickSetInUse = false;
  CTemplateSlots m_slots;
  bool m_bookTemplate = false;
  bool m_creepContent = false;
  std::int16_t m_paperSizeCode = 0;
  std::wstring m_path;  // not persisted: where the media was last read or written
};

}  // namespace tarn
