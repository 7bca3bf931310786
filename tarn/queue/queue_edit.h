#pragma once

// CQueueEdit: the parameters of one job as the queue hands it to the RIP.
//
// The record lives in its own XML file:
//
//   <?xml version="1.0"?>
//   <QueueEdit version="1">
//   	<JobName>Spring poster</JobName>
//   	<SourceFile>D:\jobs\spring.pdf</SourceFile>
//   	<Printer>Hexa6</Printer>
//   	<Copies>2</Copies>
//   	<JobSize>
//   		<Width>1190.5511811023623</Width>
//   		<Height>1683.7795275590552</Height>
//   	</JobSize>
//   	<PageSize>
//   		<Width>1190.5511811023623</Width>
//   		<Height>1683.7795275590552</Height>
//   		<Media>A2</Media>
//   	</PageSize>
//   	<PrintMode>Hexa6\Coated Paper 600.pmx</PrintMode>
//   	<Paths>
//   		<Queue>C:\Kestrel\queue</Queue>
//   		<Rip>C:\Kestrel\queue\rip\</Rip>
//   		<PrintModes>C:\Kestrel\queue\rip\System\pmodes\</PrintModes>
//   	</Paths>
//   </QueueEdit>
//
// and is written for the RIP as a job parameter file, one "key=value" line a
// parameter, the keys being the element paths above ("PageSize.Media"):
//
//   # tarn job parameters 1
//   JobName=Spring poster
//   PageSize.Media=A2
//
// Both layouts are described in docs/formats/queue-edit.md. Sizes are
// PostScript points, 72 to the inch. Nothing written depends on the process
// locale, and every file is replaced atomically.

#include <pugixml.hpp>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tarn/foundation/export.h"

namespace tarn {

class TARN_API CQueueEdit {
 public:
  // The root element of the record's own file, and its version.
  static constexpr const char* kElementName = "QueueEdit";
  static constexpr int kVersion = 1;
  // The first line of a job parameter file.
  static constexpr std::string_view kParameterHeader = "# tarn job parameters 1";

  CQueueEdit() = default;

  // Every field to its default: nothing named, one copy, no sizes.
  void SetDefaults() { *this = CQueueEdit(); }

  // Takes the queue path, the RIP folder and the print modes folder from the
  // process paths, and the queue's printer from the configuration store
  // ("Queue/Printer") when one is set and holds it. Other fields stay.
  void Setup();

  // --- the XML form -----------------------------------------------------------
  // Reads a "QueueEdit" element over the defaults; unknown children are
  // skipped. False, record unchanged, for an element of another name.
  bool ReadXML(const pugi::xml_node& node);
  // Appends the whole "QueueEdit" element to parent.
  void WriteXML(pugi::xml_node parent) const;

  // Loads the record's own file. False, record unchanged, when the file cannot
  // be read, is not XML or has another root; error then says why ("XML error
  // at line 3: ...").
  bool Load(const std::wstring& path, std::wstring* error = nullptr);
  bool LoadFromString(std::string_view utf8, std::wstring* error = nullptr);
  // Writes the record's own file atomically; false, old file untouched, with
  // the system's reason in error, when it cannot.
  bool Save(const std::wstring& path, std::wstring* error = nullptr) const;
  std::string SaveToString() const;

  // --- the job parameter file ------------------------------------------------
  // The parameter file's text: the header line, then one "key=value" line per
  // field in the order of the XML form, values escaped (see the format notes).
  std::string WriteParameters() const;
  // Reads parameter text over the defaults: "#" lines and blank lines are
  // skipped, unknown keys too. False, record unchanged, for a line without
  // "=" or a bad escape; error names the line.
  bool ReadParameters(std::string_view text, std::wstring* error = nullptr);
  bool SaveParameterFile(const std::wstring& path, std::wstring* error = nullptr) const;
  bool LoadParameterFile(const std::wstring& path, std::wstring* error = nullptr);

  // --- the print mode --------------------------------------------------------
  // Stores path relative to the print modes folder (the record's own, else the
  // process's) when it lies inside it, ignoring case and either separator;
  // otherwise as given.
  void SetPrintModePath(const std::wstring& path);
  // The print mode's full path: a stored absolute path as it is, a relative one
  // after the print modes folder of the process paths. Empty when none is set.
  std::wstring GetPrintModeFullPath() const;
  const std::wstring& GetPrintModePath() const { return print_mode_; }

  // --- the other fields ------------------------------------------------------
  const std::wstring& GetJobName() const { return job_name_; }
  void SetJobName(const std::wstring& name) { job_name_ = name; }
  const std::wstring& GetSourceFile() const { return source_file_; }
  void SetSourceFile(const std::wstring& path) { source_file_ = path; }
  // The queue's printer: the name of its printer definition (a print mode's "DRIVER").
  const std::wstring& GetPrinter() const { return printer_; }
  void SetPrinter(const std::wstring& driver) { printer_ = driver; }
  std::int32_t GetCopies() const { return copies_; }
  void SetCopies(std::int32_t copies) { copies_ = copies; }
  double GetJobWidth() const { return job_width_; }
  double GetJobHeight() const { return job_height_; }
  void SetJobSize(double width, double height) {
    job_width_ = width;
    job_height_ = height;
  }
  double GetPageWidth() const { return page_width_; }
  double GetPageHeight() const { return page_height_; }
  void SetPageSize(double width, double height) {
    page_width_ = width;
    page_height_ = height;
  }
  // The chosen media's name; empty when the page is not tied to a media.
  const std::wstring& GetMediaName() const { return media_; }
  void SetMediaName(const std::wstring& name) { media_ = name; }
  const std::wstring& GetQueuePath() const { return queue_path_; }
  void SetQueuePath(const std::wstring& path) { queue_path_ = path; }
  const std::wstring& GetRipFolder() const { return rip_folder_; }
  void SetRipFolder(const std::wstring& path) { rip_folder_ = path; }
  const std::wstring& GetPrintModesFolder() const { return print_modes_folder_; }
  void SetPrintModesFolder(const std::wstring& path) { print_modes_folder_ = path; }

  // Every parameter in file order, as "key" and value text ("PageSize.Width",
  // "595.27559055118104"), unescaped: what a tool shows.
  struct Parameter {
    std::string key;
    std::wstring value;
  };
  std::vector<Parameter> GetParameters() const;

  bool operator==(const CQueueEdit& other) const = default;

 private:
  struct Fields;  // the field table, in the source file

  std::wstring job_name_;
  std::wstring source_file_;
  std::wstring printer_;
  std::int32_t copies_ = 1;
  double job_width_ = 0.0;
  double job_height_ = 0.0;
  double page_width_ = 0.0;
  double page_height_ = 0.0;
  std::wstring media_;
  std::wstring print_mode_;
  std::wstring queue_path_;
  std::wstring rip_folder_;
  std::wstring print_modes_folder_;
};

}  // namespace tarn
