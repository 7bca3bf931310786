#pragma once

// The media a printer can print on: the media files of the printer's media
// folder, sheets made from the printer definition's page sizes and from the
// paper of the installed printer (for printers driven through the host's
// printing system), and the default roll, sheet and template.
//
//   CPrinterData printer;
//   printer.LoadPrinter(L"Aurora64");
//   CPrintMediaList media;
//   media.Initialize(&printer, nullptr, nullptr);
//   const CPrintMedia* a4 = media.GetMedia(L"A4");
//   const CPrintMedia* any = media.GetMedia(-1.0, 841.89);  // any width, A4 high
//
// The media folder is the printer's print mode folder followed by "Media\\"
// (RIP folder + "System\\pmodes\\<driver>\\Media\\"). How the list is filled,
// and in what order, is in docs/formats/media.md.

#include <cstddef>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tarn/foundation/export.h"
#include "tarn/foundation/platform.h"
#include "tarn/media/print_media.h"

namespace tarn {

class CPrinterData;

// What IsNameValid finds wrong with a name.
enum CML_NAME_ERROR : int {
  CML_NAME_OK = 0,
  CML_NAME_EMPTY = 1,      // null or empty
  CML_NAME_DUPLICATE = 2,  // another media already has the name
  CML_NAME_BAD_CHAR = 3,   // the name holds a forbidden character
};

class TARN_API CPrintMediaList {
 public:
  using container = std::vector<std::unique_ptr<CPrintMedia>>;
  using iterator = container::iterator;
  using const_iterator = container::const_iterator;

  // Called while the list fills: (steps done, steps in all, the context given
  // to Initialize, the media just added or null). The steps are the media files
  // found, then one each for the printer's page sizes, the installed printer's
  // paper and the defaults.
  using ProgressCallback = void (*)(int done, int total, void* context, void* media);

  CPrintMediaList() = default;
  virtual ~CPrintMediaList() = default;
  CPrintMediaList(const CPrintMediaList&) = delete;
  CPrintMediaList& operator=(const CPrintMediaList&) = delete;

  // Fills the list for printer (not owned; it must outlive the list's use of
  // it), replacing what it held. A null printer gives the media of the RIP
  // folder's "Media\\" folder and the defaults. Media files that cannot be read
  // are reported through the message handler and skipped; nothing on disk is
  // changed. Returns false when no media could be found at all.
  bool Initialize(CPrinterData* printer, ProgressCallback progress, void* context);

  // --- adding and removing ------------------------------------------------
  // Takes media over and appends it; null is ignored, and so is a media the
  // list holds already. Returns the media.
  CPrintMedia* AddMedia(CPrintMedia* media);
  CPrintMedia* AddMedia(std::unique_ptr<CPrintMedia> media);
  // Appends a copy of media.
  CPrintMedia* AddMedia(const CPrintMedia& media);
  // Appends a copy of media. When the list already holds a media of that name
  // (name matching), the copy takes its place and keeps its locked state and
  // PostScript texts, so an edited copy never unlocks a maker's medium.
  CPrintMedia* AddMedia_CopyLockedValue(const CPrintMedia& media);
  // Appends a new media of that kind and size (points) under name, made unique
  // first (GetUniqueMediaName; name receives the name used). A template starts
  // blank, without slots. Null when the size is not valid (IsDataValid).
  CPrintMedia* AddCustomMedia(CPrintMedia::MEDIA_TYPE type, std::wstring& name, double width, double height);
  // Removes the media of that name (name matching); its file is deleted by the
  // next WriteMediaToDisk. False when there is none.
  bool RemoveMedia(const wchar_t* name);
  // Puts media in place of the list's media named oldName (or appends a copy
  // when there is none). False, nothing changed, when media's name is refused
  // by IsNameValid; a rename deletes the old file at the next WriteMediaToDisk.
  bool UpdateMedia(CPrintMedia& media, const wchar_t* oldName);
  // Writes every media added or changed since the list was filled, each to its
  // own file in the media folder atomically, and deletes the files of removed
  // and renamed media. A media whose name IsNameValid refuses is reported and
  // not written. False when something could not be written or deleted (each
  // failure is reported).
  bool WriteMediaToDisk();

  // Makes media's name unique in the list and fit for a file: spaces become
  // underscores, forbidden characters underscores, an empty name "Media", and
  // "_2", "_3", ... is appended while another media has the name. Returns the
  // name, which media now carries.
  std::wstring GetUniqueMediaName(CPrintMedia& media) const;

  // 0 when name is valid for a media of the list other than self; see
  // CML_NAME_ERROR. The tests run in a fixed order: a duplicate at the first
  // media is reported before a forbidden character, and an empty list makes no
  // character test at all; the RIP has always judged names this way.
  CML_NAME_ERROR IsNameValid(const wchar_t* name, const CPrintMedia* self) const;

  // --- finding ----------------------------------------------------------------
  // The first media whose name equals name with spaces as underscores, or that
  // followed by "_". Null for a null or empty name or when none matches.
  CPrintMedia* GetMedia(const wchar_t* name) const;
  // The first media of that size, compared at a thousandth of a point; a
  // negative width or height matches any. Null when both are negative or none
  // matches.
  CPrintMedia* GetMedia(double width, double height) const;
  iterator find(const wchar_t* name);
  const_iterator find(const wchar_t* name) const;
  // The default media, made and appended when the list has none.
  CPrintMedia* GetDefaultRoll();
  CPrintMedia* GetDefaultSheet();
  CPrintMedia* GetDefaultTemplate();
  bool HasRollMedia() const;
  bool HasSheetMedia() const;
  bool HasTemplateMedia() const;

  // The media folder, with a trailing backslash.
  const std::wstring& GetMediaPath() const { return m_mediaPath; }
  // Sets the media folder for the next Initialize instead of the printer's.
  void SetMediaPath(const std::wstring& path);
  const CPrinterData* GetPrinter() const { return m_printer; }

  iterator begin() { return m_media.begin(); }
  iterator end() { return m_media.end(); }
  const_iterator begin() const { return m_media.begin(); }
  const_iterator end() const { return m_media.end(); }
  std::size_t size() const { return m_media.size(); }
  bool empty() const { return m_media.empty(); }
  // Empties the list; files are not touched and nothing is pending afterwards.
  void clear();

  // Turns the name of a paper of the installed printer into a media name:
  // characters a name may not hold other than the full stop become spaces; a
  // full stop after a letter (past the first character) ends the name, so does
  // a "(" past the first character; otherwise trailing words that do not begin
  // with a digit are dropped (the first word stays). Surrounding blanks go.
  // "Letter 8.5 x 11 in" gives "Letter 8.5 x 11", "A3 (297 x 420 mm)" gives "A3".
  void SanitizeGDISheetName(std::wstring& name) const;

 protected:
  bool LoadMedia(CPrinterData* printer, ProgressCallback progress, void* context);
  // Adds a sheet for each page size of the printer definition, in the
  // definition's order, unless a media of that name exists.
  void AddPDXSheets();
  // Adds a sheet for the current paper of the installed printer the definition
  // names ("GDIORIGINALNAME"), as the host's paper query gives it; nothing
  // when the printer names none, the host has set no query or it fails.
  void AddGDISheets(CPrinterData* printer);
  CPrintMedia* CreateDefaultRoll();
  CPrintMedia* CreateDefaultSheet();
  CPrintMedia* CreateDefaultTemplate();
  // A template named "Default_Template", A4, with no slots: the blank page a
  // custom template starts from. Not added to the list.
  std::unique_ptr<CPrintMedia> CreateDefaultTemplate_BlankNoSlots() const;
  // Reads the media files of the media folder given (the "*.qmd" files, in
  // name order); returns how many were added.
  int SearchMedia(const std::vector<FolderEntry>& files, ProgressCallback progress, void* context, int total);

 private:
  // Media names with every character a name may not hold turned into "_".
  static std::wstring MakeNameSafe(const std::wstring& name);
  CPrintMedia* Append(std::unique_ptr<CPrintMedia> media, bool changed);
  void ForgetFile(const CPrintMedia& media);

  container m_media;
  std::wstring m_mediaPath;
  bool m_mediaPathSet = false;  // SetMediaPath was called
  CPrinterData* m_printer = nullptr;
  // Media to write at the next WriteMediaToDisk, and files to delete then.
  std::set<const CPrintMedia*> m_changed;
  std::vector<std::wstring> m_removedFiles;
};

}  // namespace tarn
