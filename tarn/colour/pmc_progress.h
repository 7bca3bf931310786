#pragma once

// The print-mode creation wizard's progress: what the colour engineer has
// done so far on the way to a new print mode, kept in the layered print mode
// file until the wizard finishes:
//
//   <PMCProgress version="1">
//   	<Printer>Hexa6</Printer>
//   	<SelectPage>2</SelectPage>
//   	<InkModel colorModel="CMYK" totalInk="300">
//   		<Ink name="Cyan" maxInk="85" linearize="1"/>
//   		<Ink name="Black" maxInk="100" linearize="1" L="16" a="0" b="0"/>
//   	</InkModel>
//   	<Section type="InkLimits" completed="1">
//   		<Label>Ink limits</Label>
//   		<Value name="TotalInk">300</Value>
//   		<It8Chart lineEnding="CRLF">...</It8Chart>
//   	</Section>
//   	<Section type="ICCCreation" completed="0">
//   		<Label>ICC profile</Label>
//   		<DEVICELINKDATA default="1">...</DEVICELINKDATA>
//   	</Section>
//   </PMCProgress>
//
// docs/formats/creation-progress.md describes every element.

#include <pugixml.hpp>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tarn/colour/it8_chart.h"
#include "tarn/foundation/export.h"
#include "tarn/sections/icc_profile_data.h"

namespace tarn {

class CPrinterData;

// The wizard's steps, in the order it takes them.
enum class PMCSectionType : int {
  kMetadata = 0,     // ink set, media and names of the new print mode
  kInkLimits,        // how much of each ink, and in total, the media takes
  kCalibration,      // linearisation of each ink
  kSeparation,       // how the inks are combined
  kICCCreation,      // the output profile
  kReprofiling,      // refining the profile from a new measurement
  kBlackGeneration,  // how black is built
};

inline constexpr int kPMCSectionTypeCount = 7;

// "Metadata", "InkLimits", "Calibration", "Separation", "ICCCreation",
// "Reprofiling", "BlackGeneration": the names written in files.
TARN_API const wchar_t* PMCSectionTypeName(PMCSectionType type);
// The type of a name above (exact); false, type untouched, for any other.
TARN_API bool PMCSectionTypeFromName(std::wstring_view name, PMCSectionType& type);
// What the wizard shows for a section until it is given a label of its own
// ("Ink limits", "ICC profile" ...).
TARN_API std::wstring PMCSectionDefaultLabel(PMCSectionType type);
// Whether the step measures a chart (every step but the metadata).
TARN_API bool PMCSectionHasChart(PMCSectionType type);
// Whether the step holds colour-conversion settings (ICC creation,
// reprofiling, black generation).
TARN_API bool PMCSectionHasICCInfo(PMCSectionType type);

// One step of the wizard: its label, whether it is done, the values it
// settled on, the chart it measured and, for the profile steps, the
// conversion settings. Copies are deep.
class TARN_API CPMCSection {
 public:
  static constexpr const char* kElementName = "Section";

  explicit CPMCSection(PMCSectionType type = PMCSectionType::kMetadata);
  CPMCSection(const CPMCSection& other);
  CPMCSection& operator=(const CPMCSection& other);
  CPMCSection(CPMCSection&&) noexcept = default;
  CPMCSection& operator=(CPMCSection&&) noexcept = default;
  ~CPMCSection();

  // The default label, not completed, no values, chart or settings; the type stays.
  void SetDefaults();

  PMCSectionType GetType() const { return type_; }
  const std::wstring& GetLabel() const { return label_; }
  void SetLabel(const std::wstring& label) { label_ = label; }
  bool IsCompleted() const { return completed_; }
  void SetCompleted(bool completed) { completed_ = completed; }

  // Named values the step settled on ("TotalInk" -> "300"), in the order set.
  const std::vector<std::pair<std::wstring, std::wstring>>& GetValues() const { return values_; }
  // The value of that name (exact), or null.
  const std::wstring* GetValue(std::wstring_view name) const;
  // Sets a value, adding it when new. False for an empty name.
  bool SetValue(const std::wstring& name, const std::wstring& value);
  bool RemoveValue(std::wstring_view name);

  // The measured chart, or null.
  const CIT8Chart* GetIt8Chart() const { return chart_.get(); }
  CIT8Chart* GetIt8Chart() { return chart_.get(); }
  // Keeps a copy of chart. False, nothing kept, for the metadata step.
  bool SetIt8Chart(const CIT8Chart& chart);
  void RemoveIt8Chart() { chart_.reset(); }

  // The conversion settings, or null.
  const CICCInfo* GetICCInfo() const { return icc_info_ ? &*icc_info_ : nullptr; }
  // Keeps a copy. False, nothing kept, for steps without settings.
  bool SetICCInfo(const CICCInfo& info);
  void RemoveICCInfo() { icc_info_.reset(); }

  // Reads a "Section" element, from the defaults; its type comes from the
  // "type" attribute. False, nothing changed, when node is not "Section" or
  // the type is unknown. A chart that cannot be read is dropped.
  bool ReadXML(const pugi::xml_node& node);
  // Appends "Section" to parent. A chart that cannot be written is left out.
  void WriteXML(pugi::xml_node parent) const;

  bool operator==(const CPMCSection& other) const;

 private:
  struct Fields;  // the field table, in the source file

  PMCSectionType type_;
  std::wstring label_;
  bool completed_ = false;
  std::vector<std::pair<std::wstring, std::wstring>> values_;
  std::unique_ptr<CIT8Chart> chart_;
  std::optional<CICCInfo> icc_info_;
};

// One ink of the ink model.
struct TARN_API CPMCInk {
  std::wstring name;       // the printer's plane name
  double maxInk = 100.0;   // percent of the ink's full coverage
  bool linearize = true;   // the calibration step linearises this ink
  bool hasTarget = false;  // the ink has a Lab aim
  CLabColor target;        // its Lab aim when hasTarget

  bool operator==(const CPMCInk&) const = default;
};

// The inks the wizard works with: the printer's colour model, each ink with
// its limit and aim, and the total ink limit.
class TARN_API CPMCInkModel {
 public:
  static constexpr const char* kElementName = "InkModel";

  void SetDefaults() { *this = CPMCInkModel(); }

  const std::wstring& GetColorModel() const { return color_model_; }
  void SetColorModel(const std::wstring& name) { color_model_ = name; }
  // Percent of total ink; 400 means no limit for four inks.
  double GetTotalInk() const { return total_ink_; }
  void SetTotalInk(double percent) { total_ink_ = percent; }

  const std::vector<CPMCInk>& GetInks() const { return inks_; }
  // The ink of that name (ignoring case), or null.
  const CPMCInk* FindInk(std::wstring_view name) const;
  // Replaces the ink of the same name (ignoring case) or appends it. False
  // for an empty name.
  bool SetInk(const CPMCInk& ink);
  void ClearInks() { inks_.clear(); }

  // Reads an "InkModel" element, from the defaults; nameless inks are
  // skipped. False when node is not "InkModel".
  bool ReadXML(const pugi::xml_node& node);
  void WriteXML(pugi::xml_node parent) const;

  bool operator==(const CPMCInkModel& other) const;

 private:
  struct Fields;

  std::wstring color_model_;
  double total_ink_ = 400.0;
  std::vector<CPMCInk> inks_;
};

// The wizard's progress record: the printer it works for, the page it was on,
// the ink model and one section per step taken. Owns its sections; copies
// are deep.
class TARN_API CPMCProgress {
 public:
  static constexpr const char* kElementName = "PMCProgress";

  CPMCProgress() = default;
  CPMCProgress(const CPMCProgress& other);
  CPMCProgress& operator=(const CPMCProgress& other);
  CPMCProgress(CPMCProgress&&) noexcept = default;
  CPMCProgress& operator=(CPMCProgress&&) noexcept = default;
  ~CPMCProgress();

  // No sections, page 0, empty ink model and printer.
  void SetDefaults();

  const std::wstring& GetPrinter() const { return printer_; }
  void SetPrinter(const std::wstring& printer) { printer_ = printer; }
  // The wizard page that was showing when the progress was saved.
  int GetSelectPage() const { return select_page_; }
  void SetSelectPage(int page) { select_page_ = page; }

  // Takes ownership of section and keeps it in step order, replacing (and
  // deleting) a section of the same type. Returns section; null (nothing
  // taken) for a null section.
  CPMCSection* AddSection(CPMCSection* section);
  // Adds a copy.
  CPMCSection* AddSection(const CPMCSection& section);
  std::size_t GetSectionCount() const { return sections_.size(); }
  // The section at index in step order, or null.
  const CPMCSection* GetSectionAt(std::size_t index) const;
  // The section of that step, or null.
  CPMCSection* GetSection(PMCSectionType type);
  const CPMCSection* GetSection(PMCSectionType type) const;
  // The label of that step's section; empty when there is none.
  std::wstring GetSectionLabel(PMCSectionType type) const;
  // The chart of that step's section; null when there is none.
  const CIT8Chart* GetSectionIt8Chart(PMCSectionType type) const;
  // Deletes that step's section; false when there is none.
  bool RemoveSection(PMCSectionType type);

  const CPMCInkModel& GetInkModel() const { return ink_model_; }
  void SetInkModel(const CPMCInkModel& model) { ink_model_ = model; }
  // The ink model for printer: one ink per plane of the printer's colour
  // model (the stored model's, when the printer has it, else the printer's
  // default), in plane order. An ink keeps its stored limits; a new one gets
  // the defaults; an ink without an aim takes the printer's reference Lab
  // value. The stored model as it is when printer is null or has no such
  // colour model.
  CPMCInkModel GetInkModel(const CPrinterData* printer) const;

  // Reads a "PMCProgress" element, from the defaults. Sections of unknown
  // type are skipped; a later section of a type replaces an earlier one.
  // False when node is not "PMCProgress".
  bool ReadXML(const pugi::xml_node& node);
  // Appends "PMCProgress" to parent.
  void WriteXML(pugi::xml_node parent) const;

  bool operator==(const CPMCProgress& other) const;

 private:
  struct Fields;

  std::wstring printer_;
  std::int32_t select_page_ = 0;
  CPMCInkModel ink_model_;
  std::vector<std::unique_ptr<CPMCSection>> sections_;
};

}  // namespace tarn
