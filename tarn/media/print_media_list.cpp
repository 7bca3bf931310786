#include "tarn/media/print_media_list.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "tarn/foundation/format.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/printer_data.h"

namespace tarn {
namespace {

constexpr const wchar_t* kCaption = L"Media";
constexpr std::wstring_view kMediaFolder = L"Media\\";
constexpr std::wstring_view kForbidden = CPrintMedia::kForbiddenNameChars;

// Names are looked up with spaces as underscores.
std::wstring Normalise(std::wstring_view name) {
  std::wstring normalised(name);
  std::replace(normalised.begin(), normalised.end(), L' ', L'_');
  return normalised;
}

// A media matches a normalised name when its name is that name, or that name
// followed by "_". Exact: case counts.
bool Matches(const std::wstring& mediaName, const std::wstring& normalised) {
  if (mediaName.size() == normalised.size()) {
    return mediaName == normalised;
  }
  return mediaName.size() == normalised.size() + 1 && mediaName.back() == L'_' &&
         mediaName.compare(0, normalised.size(), normalised) == 0;
}

bool HoldsForbidden(std::wstring_view name) {
  return name.find_first_of(kForbidden) != std::wstring_view::npos;
}

// Sizes are compared as whole thousandths of a point.
double Thousandths(double value) {
  return std::round(value * 1000.0);
}

bool IsAsciiLetter(wchar_t c) {
  return (c >= L'A' && c <= L'Z') || (c >= L'a' && c <= L'z');
}

bool IsAsciiDigit(wchar_t c) {
  return c >= L'0' && c <= L'9';
}

bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t';
}

void Trim(std::wstring& text) {
  while (!text.empty() && IsBlank(text.back())) {
    text.pop_back();
  }
  size_t first = 0;
  while (first < text.size() && IsBlank(text[first])) {
    ++first;
  }
  text.erase(0, first);
}

void Report(const std::wstring& text) {
  ShowMessage(text, kCaption);
}

}  // namespace

// --- filling -----------------------------------------------------------------

bool CPrintMediaList::Initialize(CPrinterData* printer, ProgressCallback progress, void* context) {
  return LoadMedia(printer, progress, context);
}

void CPrintMediaList::SetMediaPath(const std::wstring& path) {
  m_mediaPath = path;
  if (!m_mediaPath.empty() && m_mediaPath.back() != L'\\' && m_mediaPath.back() != L'/') {
    m_mediaPath += L'\\';
  }
  m_mediaPathSet = true;
}

bool CPrintMediaList::LoadMedia(CPrinterData* printer, ProgressCallback progress, void* context) {
  clear();
  m_printer = printer;
  if (!m_mediaPathSet) {
    // Each printer keeps its media beside its print modes; without a printer
    // (or a driver name) the RIP folder's own media folder is used.
    const std::wstring driver = printer ? printer->GetDriverName() : std::wstring();
    m_mediaPath = driver.empty() ? GetTarnRipFolder() + std::wstring(kMediaFolder)
                                 : GetPrintModesFolder() + driver + L"\\" + std::wstring(kMediaFolder);
  }
  std::vector<FolderEntry> files = FindFiles(m_mediaPath + L"*.qmd");
  std::erase_if(files, [](const FolderEntry& entry) { return entry.is_folder; });
  const int total = static_cast<int>(files.size()) + 3;
  if (progress) {
    progress(0, total, context, nullptr);
  }
  // Files first: a medium the user saved wins over a sheet of the same name
  // that the printer or the installed printer would give.
  SearchMedia(files, progress, context, total);
  int done = static_cast<int>(files.size());
  AddPDXSheets();
  if (progress) {
    progress(++done, total, context, nullptr);
  }
  AddGDISheets(printer);
  if (progress) {
    progress(++done, total, context, nullptr);
  }
  GetDefaultRoll();
  GetDefaultSheet();
  GetDefaultTemplate();
  if (progress) {
    progress(++done, total, context, nullptr);
  }
  return !m_media.empty();
}

int CPrintMediaList::SearchMedia(const std::vector<FolderEntry>& files, ProgressCallback progress,
                                 void* context, int total) {
  int done = 0;
  int added = 0;
  for (const FolderEntry& entry : files) {
    const std::wstring path = m_mediaPath + entry.name;
    auto media = std::make_unique<CPrintMedia>();
    std::wstring error;
    CPrintMedia* stored = nullptr;
    if (!media->ReadFile(path, &error)) {
      Report(Format(L"Media file %s skipped: %s", path, error));
    } else {
      if (media->GetName().empty()) {
        // A nameless medium is known by its file's name.
        media->SetName(entry.name.substr(0, entry.name.size() - 4));
      }
      if (GetMedia(media->GetName().c_str()) != nullptr) {
        Report(Format(L"Media file %s skipped: another media file already defines \"%s\"", path,
                      media->GetName()));
      } else {
        stored = Append(std::move(media), false);
        ++added;
      }
    }
    if (progress) {
      progress(++done, total, context, stored);
    }
  }
  return added;
}

void CPrintMediaList::AddPDXSheets() {
  if (!m_printer) {
    return;
  }
  for (const auto& entry : m_printer->GetPages()) {
    const CPageSizeDef* page = entry.second.get();
    if (!page) {
      continue;
    }
    auto sheet = std::make_unique<CPrintMedia>();
    sheet->SetType(CPrintMedia::MEDIA_SHEET);
    sheet->SetName(MakeNameSafe(page->GetName()));
    // Page sizes are inches; the sheet is the printable size and its margins.
    sheet->SetSize(page->GetFullWidth() * 72.0, page->GetFullDepth() * 72.0);
    sheet->SetMargins(page->GetLeftMargin() * 72.0, page->GetRightMargin() * 72.0,
                      page->GetTopMargin() * 72.0, page->GetBottomMargin() * 72.0);
    if (!sheet->IsDataValid() || GetMedia(sheet->GetName().c_str()) != nullptr) {
      continue;
    }
    Append(std::move(sheet), false);
  }
}

void CPrintMediaList::AddGDISheets(CPrinterData* printer) {
  if (!printer || printer->GetGDIOriginalName().empty()) {
    return;
  }
  PrinterPaper paper;
  if (!printer->QueryGDIPaper(paper)) {
    return;
  }
  std::wstring name = paper.name;
  SanitizeGDISheetName(name);
  name = MakeNameSafe(name);
  if (name.empty()) {
    name = Format(L"Paper_%d", paper.code);
  }
  auto sheet = std::make_unique<CPrintMedia>();
  sheet->SetType(CPrintMedia::MEDIA_SHEET);
  sheet->SetName(name);
  // The paper comes in tenths of a millimetre; the non-printable margins of
  // the definition are inches, like its other lengths.
  sheet->SetSize(paper.width / 254.0 * 72.0, paper.length / 254.0 * 72.0);
  const double x = printer->GetGDINonPrintableX() * 72.0;
  const double y = printer->GetGDINonPrintableY() * 72.0;
  sheet->SetMargins(x, x, y, y);
  sheet->SetPaperSizeCode(static_cast<std::int16_t>(paper.code));
  if (!sheet->IsDataValid() || GetMedia(sheet->GetName().c_str()) != nullptr) {
    return;
  }
  Append(std::move(sheet), false);
}

void CPrintMediaList::SanitizeGDISheetName(std::wstring& name) const {
  for (wchar_t& c : name) {
    if (c != L'.' && !CPrintMedia::IsFileNameChar(c)) {
      c = L' ';
    }
  }
  // "Env. Monarch" is "Env": an abbreviation ends the name. A full stop
  // between digits ("8.5 x 11") is part of a size and stays.
  const size_t stop = name.find(L'.', 1);
  if (stop != std::wstring::npos && IsAsciiLetter(name[stop - 1])) {
    name.resize(stop);
  }
  const size_t bracket = name.find(L'(', 1);
  if (bracket != std::wstring::npos) {
    name.resize(bracket);
  } else {
    // "Letter 8.5 x 11 in" keeps its size and loses its unit.
    for (;;) {
      Trim(name);
      const size_t space = name.find_last_of(L" \t");
      if (space == std::wstring::npos || IsAsciiDigit(name[space + 1])) {
        break;
      }
      name.resize(space);
    }
  }
  Trim(name);
}

// --- defaults ------------------------------------------------------------------

CPrintMedia* CPrintMediaList::CreateDefaultRoll() {
  auto roll = std::make_unique<CPrintMedia>();
  roll->CreateDefaultRoll(m_printer ? m_printer->GetDefaultRollWidth() * 72.0 : 0.0);
  return Append(std::move(roll), false);
}

CPrintMedia* CPrintMediaList::CreateDefaultSheet() {
  auto sheet = std::make_unique<CPrintMedia>();
  sheet->CreateDefaultSheet();
  return Append(std::move(sheet), false);
}

CPrintMedia* CPrintMediaList::CreateDefaultTemplate() {
  auto page = std::make_unique<CPrintMedia>();
  page->CreateDefaultTemplate();
  return Append(std::move(page), false);
}

std::unique_ptr<CPrintMedia> CPrintMediaList::CreateDefaultTemplate_BlankNoSlots() const {
  auto page = std::make_unique<CPrintMedia>();
  page->CreateDefaultTemplate();
  page->ClearSlots();
  return page;
}

CPrintMedia* CPrintMediaList::GetDefaultRoll() {
  CPrintMedia* roll = GetMedia(CPrintMedia::kDefaultRollName);
  return roll ? roll : CreateDefaultRoll();
}

CPrintMedia* CPrintMediaList::GetDefaultSheet() {
  CPrintMedia* sheet = GetMedia(CPrintMedia::kDefaultSheetName);
  return sheet ? sheet : CreateDefaultSheet();
}

CPrintMedia* CPrintMediaList::GetDefaultTemplate() {
  for (const auto& media : m_media) {
    if (media->IsDefaultTemplate()) {
      return media.get();
    }
  }
  return CreateDefaultTemplate();
}

bool CPrintMediaList::HasRollMedia() const {
  return std::any_of(m_media.begin(), m_media.end(), [](const auto& m) { return m->IsRoll(); });
}

bool CPrintMediaList::HasSheetMedia() const {
  return std::any_of(m_media.begin(), m_media.end(), [](const auto& m) { return m->IsSheet(); });
}

bool CPrintMediaList::HasTemplateMedia() const {
  return std::any_of(m_media.begin(), m_media.end(), [](const auto& m) { return m->IsTemplate(); });
}

// --- finding -------------------------------------------------------------------

CPrintMediaList::iterator CPrintMediaList::find(const wchar_t* name) {
  if (name == nullptr || *name == 0) {
    return m_media.end();
  }
  const std::wstring normalised = Normalise(name);
  return std::find_if(m_media.begin(), m_media.end(),
                      [&](const auto& media) { return Matches(media->GetName(), normalised); });
}

CPrintMediaList::const_iterator CPrintMediaList::find(const wchar_t* name) const {
  return const_cast<CPrintMediaList*>(this)->find(name);
}

CPrintMedia* CPrintMediaList::GetMedia(const wchar_t* name) const {
  const auto it = find(name);
  return it == m_media.end() ? nullptr : it->get();
}

CPrintMedia* CPrintMediaList::GetMedia(double width, double height) const {
  if (width < 0.0 && height < 0.0) {
    return nullptr;
  }
  const double w = Thousandths(width);
  const double h = Thousandths(height);
  for (const auto& media : m_media) {
    if ((width < 0.0 || Thousandths(media->GetWidth()) == w) &&
        (height < 0.0 || Thousandths(media->GetHeight()) == h)) {
      return media.get();
    }
  }
  return nullptr;
}

CML_NAME_ERROR CPrintMediaList::IsNameValid(const wchar_t* name, const CPrintMedia* self) const {
  if (name == nullptr || *name == 0) {
    return CML_NAME_EMPTY;
  }
  if (m_media.empty()) {
    return CML_NAME_OK;
  }
  const std::wstring normalised = Normalise(name);
  // The character test sits inside the walk, after each media's duplicate
  // test: names have always been judged in this order.
  for (const auto& media : m_media) {
    if (Matches(media->GetName(), normalised) && media.get() != self) {
      return CML_NAME_DUPLICATE;
    }
    if (HoldsForbidden(normalised)) {
      return CML_NAME_BAD_CHAR;
    }
  }
  return CML_NAME_OK;
}

std::wstring CPrintMediaList::MakeNameSafe(const std::wstring& name) {
  std::wstring safe = name;
  Trim(safe);
  for (wchar_t& c : safe) {
    if (c == L' ' || !CPrintMedia::IsFileNameChar(c)) {
      c = L'_';
    }
  }
  return safe;
}

std::wstring CPrintMediaList::GetUniqueMediaName(CPrintMedia& media) const {
  std::wstring base = MakeNameSafe(media.GetName());
  if (base.empty()) {
    base = L"Media";
  }
  std::wstring candidate = base;
  // Each try that fails is taken by a different media, so this ends within
  // size() + 1 tries.
  for (size_t n = 2; IsNameValid(candidate.c_str(), &media) != CML_NAME_OK; ++n) {
    candidate = base + L"_" + std::to_wstring(n);
  }
  media.SetName(candidate);
  return candidate;
}

// --- changing --------------------------------------------------------------------

CPrintMedia* CPrintMediaList::Append(std::unique_ptr<CPrintMedia> media, bool changed) {
  if (!media) {
    return nullptr;
  }
  m_media.push_back(std::move(media));
  CPrintMedia* stored = m_media.back().get();
  if (changed) {
    m_changed.insert(stored);
  }
  return stored;
}

void CPrintMediaList::ForgetFile(const CPrintMedia& media) {
  if (!media.m_path.empty()) {
    m_removedFiles.push_back(media.m_path);
  }
}

CPrintMedia* CPrintMediaList::AddMedia(CPrintMedia* media) {
  // A media the list owns already must not be owned twice.
  if (std::any_of(m_media.begin(), m_media.end(),
                  [media](const auto& held) { return held.get() == media; })) {
    return media;
  }
  return Append(std::unique_ptr<CPrintMedia>(media), true);
}

CPrintMedia* CPrintMediaList::AddMedia(std::unique_ptr<CPrintMedia> media) {
  return Append(std::move(media), true);
}

CPrintMedia* CPrintMediaList::AddMedia(const CPrintMedia& media) {
  return Append(std::make_unique<CPrintMedia>(media), true);
}

CPrintMedia* CPrintMediaList::AddMedia_CopyLockedValue(const CPrintMedia& media) {
  auto copy = std::make_unique<CPrintMedia>(media);
  const iterator it = find(media.GetName().c_str());
  if (it == m_media.end()) {
    return Append(std::move(copy), true);
  }
  CPrintMedia& old = **it;
  copy->m_locked = old.m_locked;
  copy->m_ps = old.m_ps;
  copy->m_psImageableArea = old.m_psImageableArea;
  copy->m_psDimension = old.m_psDimension;
  copy->m_path = old.m_path;  // the file it replaces
  m_changed.erase(&old);
  *it = std::move(copy);
  m_changed.insert(it->get());
  return it->get();
}

CPrintMedia* CPrintMediaList::AddCustomMedia(CPrintMedia::MEDIA_TYPE type, std::wstring& name, double width,
                                             double height) {
  std::unique_ptr<CPrintMedia> media;
  if (type == CPrintMedia::MEDIA_TEMPLATE) {
    media = CreateDefaultTemplate_BlankNoSlots();
  } else if (type == CPrintMedia::MEDIA_ROLL || type == CPrintMedia::MEDIA_SHEET ||
             type == CPrintMedia::MEDIA_FIXED) {
    media = std::make_unique<CPrintMedia>();
    media->SetType(type);
  } else {
    return nullptr;
  }
  media->SetName(name);
  media->SetSize(width, height);
  name = GetUniqueMediaName(*media);
  if (!media->IsDataValid()) {
    return nullptr;
  }
  return Append(std::move(media), true);
}

bool CPrintMediaList::RemoveMedia(const wchar_t* name) {
  const iterator it = find(name);
  if (it == m_media.end()) {
    return false;
  }
  ForgetFile(**it);
  m_changed.erase(it->get());
  m_media.erase(it);
  return true;
}

bool CPrintMediaList::UpdateMedia(CPrintMedia& media, const wchar_t* oldName) {
  const iterator it = find(oldName);
  CPrintMedia* existing = it == m_media.end() ? nullptr : it->get();
  if (IsNameValid(media.GetName().c_str(), existing) != CML_NAME_OK) {
    return false;
  }
  if (!existing) {
    AddMedia(media);
    return true;
  }
  // The file it was read from stays known, so that a rename deletes it once
  // the new file is written.
  const std::wstring path = existing->m_path;
  *existing = media;
  existing->m_path = path;
  m_changed.insert(existing);
  return true;
}

bool CPrintMediaList::WriteMediaToDisk() {
  bool ok = true;
  std::vector<std::wstring> stale = std::move(m_removedFiles);
  m_removedFiles.clear();
  if (!m_changed.empty() && !CreateFolders(m_mediaPath)) {
    Report(Format(L"Cannot create the media folder %s", m_mediaPath));
    m_removedFiles = std::move(stale);
    return false;
  }
  for (const auto& media : m_media) {
    if (m_changed.count(media.get()) == 0) {
      continue;
    }
    if (IsNameValid(media->GetName().c_str(), media.get()) != CML_NAME_OK) {
      Report(Format(
          L"Media \"%s\" not saved: the name is empty, taken or holds one of / \\ : * ? \" < > | . { } [ ]",
          media->GetName()));
      ok = false;
      continue;
    }
    const std::wstring previous = media->m_path;
    std::wstring error;
    if (!media->WriteFile(m_mediaPath, &error)) {
      Report(Format(L"Media \"%s\" not saved: %s", media->GetName(), error));
      ok = false;
      continue;
    }
    m_changed.erase(media.get());
    if (!previous.empty() && previous != media->m_path) {
      stale.push_back(previous);
    }
  }
  // Only files of the media folder go, and never one that a media of the list
  // still lives in.
  for (const std::wstring& path : stale) {
    if (path.size() <= m_mediaPath.size() || path.compare(0, m_mediaPath.size(), m_mediaPath) != 0 ||
        path.find_first_of(L"\\/", m_mediaPath.size()) != std::wstring::npos) {
      continue;
    }
    const bool inUse = std::any_of(m_media.begin(), m_media.end(),
                                   [&](const auto& media) { return EqualsNoCase(media->m_path, path); });
    if (inUse || !FileExists(path)) {
      continue;
    }
    if (!RemoveFile(path)) {
      Report(Format(L"Cannot delete the media file %s", path));
      m_removedFiles.push_back(path);
      ok = false;
    }
  }
  return ok;
}

void CPrintMediaList::clear() {
  m_media.clear();
  m_changed.clear();
  m_removedFiles.clear();
}

}  // namespace tarn
