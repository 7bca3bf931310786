#include "tarn/postscript/postscript_setup.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <string_view>
#include <vector>

#include "tarn/foundation/platform.h"
#include "tarn/foundation/text.h"
#include "tarn/printer/definitions.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printmode/print_mode_data.h"

namespace tarn {

namespace {

using Table = std::array<std::uint8_t, 256>;

constexpr wchar_t kCrLf[] = L"\r\n";

// The trailer every set-up ends with unless the print mode names its own.
constexpr wchar_t kTrailerMark[] = L"Kestrel";
constexpr wchar_t kDefaultTrailer[] = L"KestrelA4";

// Options the RIP sets from the print mode's resolution and colour mode
// lines; as option lines they would set them twice.
constexpr wchar_t kResolutionOption[] = L"Resolution";
constexpr wchar_t kColorPlaneOption[] = L"Color Plane";

constexpr wchar_t kHexachrome[] = L"Hexachrome";
constexpr unsigned kGrayPlane = 4;

// The level tables in the order the set-up defines them, with the transfer
// plane each is made from.
struct LevelTable {
  const wchar_t* name;
  unsigned plane;
};
constexpr std::array<LevelTable, 6> kLevelTables = {{
    {L"gray", 4},
    {L"red", 1},
    {L"green", 2},
    {L"blue", 3},
    {L"hex1", 5},
    {L"hex2", 6},
}};

// Every block opens with "% -- Name --" and closes with "% -- End Name --",
// each line after an empty one.
void OpenBlock(formatstringT& out, std::wstring_view name) {
  out.Append(L"\r\n% -- ").Append(name).Append(L" --\r\n");
}

void CloseBlock(formatstringT& out, std::wstring_view name) {
  out.Append(L"\r\n% -- End ").Append(name).Append(L" --\r\n");
}

// 256 values as printf's "%2.2x" would write them, 32 a line, each line
// ended by lineEnd. Built in place and appended once: a set-up holds
// thousands of values, and a format call per value would dominate its cost.
void AppendTable(std::wstring& out, const Table& table, std::wstring_view lineEnd) {
  static constexpr wchar_t kDigits[] = L"0123456789abcdef";
  const size_t start = out.size();
  const size_t lineLength = 64 + lineEnd.size();
  out.resize(start + 8 * lineLength);
  wchar_t* at = out.data() + start;
  for (size_t i = 0; i < table.size(); ++i) {
    *at++ = kDigits[table[i] >> 4];
    *at++ = kDigits[table[i] & 0x0f];
    if (i % 32 == 31) {
      at = std::copy(lineEnd.begin(), lineEnd.end(), at);
    }
  }
}

// A table value from a computed level: truncated, and kept to what one byte
// holds (a density curve extrapolates past 0..255; NaN gives 0).
std::uint8_t ToByte(double v) {
  if (!(v > 0.0)) {
    return 0;
  }
  return v >= 255.0 ? 255 : static_cast<std::uint8_t>(v);
}

// The level table of a transfer curve: rounded values, gray starting at 0
// whatever the curve says, and a last value of 254 or more pushed to 255 so
// that full ink stays full ink. False when the curve cannot be evaluated.
bool LevelValues(const CPMCurveData& curve, unsigned planeIndex, Table& table) {
  try {
    for (int i = 0; i < 256; ++i) {
      double v = curve.GetCurveValue(i, false) + 0.5;
      if (i == 0 && planeIndex == kGrayPlane) {
        v = 0.0;
      }
      if (i == 255 && v >= 254.0) {
        v = 255.0;
      }
      table[i] = ToByte(v);
    }
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

// Gray planes carry gray levels (0 is full ink), not ink amounts, so their
// separation curve is applied to the ink amount 255 - i and turned back.
bool IsGrayPlane(const std::wstring& planeName) {
  return planeName == L"DeviceGray" || planeName == L"UnderbaseGray";
}

bool SeparationValues(const CPMCurveData& curve, const std::wstring& planeName, Table& table) {
  const bool gray = IsGrayPlane(planeName);
  try {
    for (int i = 0; i < 256; ++i) {
      const double v = gray ? 255.0 - curve.GetCurveValue(255 - i, false) : curve.GetCurveValue(i, false);
      table[i] = ToByte(v + 0.5);
    }
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

// PostScript delimiters and white space cannot stand in a name literal.
bool IsNameCharacter(wchar_t c) {
  if (c <= L' ' || c == 0x7f) {
    return false;
  }
  return std::wstring_view(L"()<>[]{}/%").find(c) == std::wstring_view::npos;
}

bool IsPostScriptName(std::wstring_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), IsNameCharacter);
}

// Text inside a PostScript string literal: backslash, parentheses and line
// breaks escaped, so any text keeps the string well-formed.
std::wstring EscapeString(std::wstring_view text) {
  std::wstring out;
  out.reserve(text.size());
  for (wchar_t c : text) {
    switch (c) {
      case L'\\':
      case L'(':
      case L')':
        out.push_back(L'\\');
        out.push_back(c);
        break;
      case L'\r':
        out.append(L"\\r");
        break;
      case L'\n':
        out.append(L"\\n");
        break;
      default:
        out.push_back(c);
    }
  }
  return out;
}

bool IsProcessPlate(const std::wstring& plate) {
  return plate == L"Cyan" || plate == L"Magenta" || plate == L"Yellow" || plate == L"Black" ||
         plate == L"Gray";
}

// The separation curve of a plane: the channel that carries the plane's own
// ink, else the plane's first channel; null when the plane has none.
const CPMCurveData* SeparationCurve(const CPMSeparationData& separations, const std::wstring& plane) {
  const CPMSeparationData::ChannelQueue* channels = separations.GetPlane(plane);
  if (channels == nullptr || channels->empty()) {
    return nullptr;
  }
  for (const CPMCurveData& channel : *channels) {
    if (channel.GetName() == plane) {
      return &channel;
    }
  }
  return &channels->front();
}

bool IsHexachrome(const CPrintModeData& mode, const CPrinterData& printer) {
  const CColorDef* model = mode.GetColorModel(printer);
  return (model ? model->GetName() : mode.GetColorModeName()) == kHexachrome;
}

// The plates the halftone block screens: the colour model's planes, or the
// four process plates when the printer does not know the model.
std::vector<std::wstring> HalftonePlates(const CPrintModeData& mode, const CPrinterData& printer) {
  if (const CColorDef* model = mode.GetColorModel(printer)) {
    return model->GetPlanes();
  }
  return {L"Cyan", L"Magenta", L"Yellow", L"Black"};
}

// The screen of a plate: its own, else (for an ink that is not a process
// plate) the section's spot screen, else the plate's default screen. With
// "same shape" every plate takes the black screen's shape.
CPMHalftoneOption ScreenFor(const CPMHalftoneData& halftones, const std::wstring& plate) {
  CPMHalftoneOption screen;
  if (const CPMHalftoneOption* own = halftones.GetHalftoneOption(plate)) {
    screen = *own;
  } else if (const CPMHalftoneOption* spot = halftones.GetHalftoneOption(std::wstring(L"Spot"));
             spot != nullptr && !IsProcessPlate(plate)) {
    screen = *spot;
    screen.SetName(plate);
  } else {
    screen = halftones.GetDefaultHaftone(plate);
  }
  screen.SetPlate(plate);
  if (halftones.GetUseSameShape() && plate != L"Black") {
    screen.SetShape(ScreenFor(halftones, L"Black").GetShape());
  }
  return screen;
}

bool SameScreen(const CPMHalftoneOption& a, const CPMHalftoneOption& b) {
  return static_cast<int>(a.GetFrequency()) == static_cast<int>(b.GetFrequency()) &&
         a.GetAngle() == b.GetAngle() && a.GetShape() == b.GetShape();
}

// Appends "<< ... >>" of a screen without its "/Plate <<" opening line.
void AppendScreenBody(formatstringT& out, const CPMHalftoneOption& screen) {
  formatstringT entry;
  screen.AppendHFTPostscript(entry);
  const size_t firstLineEnd = entry.str().find(L'\n');
  out.Append(
      std::wstring_view(entry.str()).substr(firstLineEnd == std::wstring::npos ? 0 : firstLineEnd + 1));
}

}  // namespace

CPostscriptSetup::CPostscriptSetup(CPrintModeData& mode) : mode_(mode) {}

std::string CPostscriptSetup::GetBytes() const {
  // The RIP reads the set-up as 8-bit text: Latin-1, '?' for what it lacks.
  const std::wstring& text = text_.str();
  std::string bytes(text.size(), '\0');
  std::transform(text.begin(), text.end(), bytes.begin(),
                 [](wchar_t c) { return static_cast<unsigned>(c) <= 0xff ? static_cast<char>(c) : '?'; });
  return bytes;
}

// --- the set-up -----------------------------------------------------------

void CPostscriptSetup::WritePostscriptSection() {
  CPrinterData printer;
  // A definition that does not load leaves the record empty: the blocks are
  // written without colour-model planes or option lines.
  printer.LoadPrinter(mode_.GetDriver());
  WritePostscriptSection(printer);
}

void CPostscriptSetup::WritePostscriptSection(const CPrinterData& printer) {
  text_.str().reserve(text_.length() + 16384);
  WritePrinterSelect();
  WriteLevelTransferCurves();
  WriteSeparationCurves(&printer);
  WriteNColor(&printer);
  WriteHalftone(&printer);
  WritePrinterOptions(&printer);
  if (mode_.GetTrailerText().find(kTrailerMark) == std::wstring::npos) {
    mode_.SetTrailerText(kDefaultTrailer);
  }
  text_.Append(mode_.GetTrailerText());
}

void CPostscriptSetup::WritePrinterSelect() {
  OpenBlock(text_, L"Printer Selection");
  text_.Append(kCrLf);
  text_.Append(L"(%StartUp%) currentdevparams (");
  text_.Append(EscapeString(mode_.GetPrinterX()));
  text_.Append(L") statusdict begin _selectprinter end\r\n");
  CloseBlock(text_, L"Printer Selection");
}

const CPMCurveData* CPostscriptSetup::LevelCurve(unsigned planeIndex) const {
  const CPMTransferData& transfers = *mode_.GetTransfers();
  return transfers.GetCurve(transfers.GetUseAll() ? 0 : planeIndex, 0);
}

std::wstring CPostscriptSetup::WriteLevelCurve(unsigned planeIndex) const {
  const CPMCurveData* curve = LevelCurve(planeIndex);
  Table table;
  std::wstring out;
  if (curve != nullptr && LevelValues(*curve, planeIndex, table)) {
    out.reserve(256 * 2 + 16);
    AppendTable(out, table, kCrLf);
  }
  return out;
}

void CPostscriptSetup::WriteLevelTransferCurves() {
  OpenBlock(text_, L"Level Transfer Curves");
  text_.Append(kCrLf);
  text_.Append(L"userdict begin\r\n\r\n");
  text_.Append(
      L"/settransfer {systemdict /currentcolortransfer get exec pop 4 -1 roll systemdict /setcolortransfer "
      L"get "
      L"exec} def\r\n\r\n");
  for (const LevelTable& table : kLevelTables) {
    text_.AppendFormat(L"/%stransfertable <\r\n", table.name);
    text_.Append(WriteLevelCurve(table.plane));
    text_.Append(L"> def\r\n");
  }
  text_.Append(L"\r\nend\r\n");
  // "Curvers" is how the RIP's readers of the set-up find the block's end.
  CloseBlock(text_, L"Level Transfer Curvers");
}

std::wstring CPostscriptSetup::SeparationTableName(const std::wstring& planeName) {
  std::wstring name;
  name.reserve(planeName.size());
  for (wchar_t c : FoldCase(planeName)) {
    if (IsNameCharacter(c)) {
      name.push_back(c);
    }
  }
  return name == L"black" ? L"gray" : name;
}

std::wstring CPostscriptSetup::WriteSepCurve(const CPMCurveData* curve, const std::wstring& planeName) const {
  formatstringT out;
  out.AppendFormat(L"/%sseparation <\r\n", SeparationTableName(planeName));
  Table table;
  if (curve != nullptr && SeparationValues(*curve, planeName, table)) {
    AppendTable(out.str(), table, kCrLf);
  }
  out.Append(L"> def\r\n\r\n");
  return out.str();
}

std::wstring CPostscriptSetup::WriteSepChannels(const CPrinterData& printer) const {
  std::wstring out;
  const CColorDef* model = mode_.GetColorModel(printer);
  if (model == nullptr) {
    return out;
  }
  for (const CColorPlaneDef& plane : model->GetPlaneDefs()) {
    if (SeparationTableName(plane.name).empty()) {
      continue;  // nothing of the name can stand in PostScript
    }
    out += WriteSepCurve(SeparationCurve(*mode_.GetSeparations(), plane.name), plane.name);
  }
  return out;
}

void CPostscriptSetup::WriteSeparationCurves(const CPrinterData* printer) {
  if (printer == nullptr) {
    return;
  }
  OpenBlock(text_, L"Separation Curves");
  text_.Append(kCrLf);
  text_.Append(L"userdict begin\r\n\r\n");
  text_.Append(WriteSepChannels(*printer));
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"Separation Curves");
}

bool CPostscriptSetup::HasSeparationTable(const std::wstring& planeName, const CPrinterData& printer) const {
  const CColorDef* model = mode_.GetColorModel(printer);
  if (model == nullptr || model->FindPlane(planeName) == nullptr || SeparationTableName(planeName).empty()) {
    return false;
  }
  const CPMCurveData* curve = SeparationCurve(*mode_.GetSeparations(), planeName);
  if (curve == nullptr) {
    return false;
  }
  // Tone 0 is the highest density: a curve that reaches it reaches every
  // tone, so one evaluation tells whether the whole table can be written.
  try {
    curve->GetCurveValue(0.0, false);
  } catch (const std::exception&) {
    return false;
  }
  return true;
}

std::wstring CPostscriptSetup::WriteTClipProc(const std::wstring& planeName,
                                              const CPrinterData& printer) const {
  if (!HasSeparationTable(planeName, printer)) {
    // No table to read: the plane passes unclipped.
    return Format(L"      /%s [{}]\r\n", planeName);
  }
  const std::wstring table = SeparationTableName(planeName);
  if (table == L"gray" && planeName != L"Gray") {
    // Black reads the gray table; the entry names the colorant it comes from.
    return Format(L"      /%s [ /%s {255 mul round cvi %sseparation exch get 255 div}]\r\n", planeName,
                  L"Gray", table);
  }
  return Format(L"      /%s [{255 mul round cvi %sseparation exch get 255 div}]\r\n", planeName, table);
}

void CPostscriptSetup::WriteNColor(const CPrinterData* printer) {
  if (printer == nullptr) {
    return;
  }
  const bool hexachrome = IsHexachrome(mode_, *printer);
  OpenBlock(text_, L"Level Transfer Functions");
  text_.Append(kCrLf);
  text_.Append(L"printer_desc begin\r\n\r\n");
  text_.Append(L"  /NColor <<\r\n");
  text_.Append(L"    /TProcs[\r\n");
  for (const wchar_t* table : {L"red", L"green", L"blue", L"gray", L"hex1", L"hex2"}) {
    if (!hexachrome && std::wstring_view(table).starts_with(L"hex")) {
      break;
    }
    text_.AppendFormat(L"      {255 mul round cvi %stransfertable exch get 255 div}\r\n", table);
  }
  text_.Append(L"    ]\r\n");
  text_.Append(L"    /ClippingTProcs <<\r\n");
  std::vector<std::wstring> clipped = {L"Black", L"Cyan", L"Magenta", L"Yellow"};
  if (hexachrome) {
    clipped.insert(clipped.end(), {L"Hex0", L"Hex1"});
  }
  for (const std::wstring& plane : mode_.GetSeparations()->GetMainInks()) {
    if (std::find(clipped.begin(), clipped.end(), plane) != clipped.end()) {
      text_.Append(WriteTClipProc(plane, *printer));
    }
  }
  text_.Append(L"    >>\r\n");
  text_.Append(L"    /Screens <<\r\n");
  text_.Append(L"      /HalftoneType 9 /SubType 1\r\n");
  text_.Append(L"      /Default /Black\r\n");
  text_.Append(L"    >>\r\n");
  text_.Append(L"  >> def\r\n");
  text_.Append(L"\r\nend\r\n");
  text_.Append(L"\r\nuserdict begin\r\n");
  text_.Append(L"  $Disable-Screen\r\n");
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"Level Transfer Functions");
}

void CPostscriptSetup::WriteHalftone(const CPrinterData* printer) {
  if (printer == nullptr) {
    return;
  }
  const CPMHalftoneData& halftones = *mode_.GetHalftones();
  OpenBlock(text_, L"Halftone Screening");
  if (!halftones.GetIsUsed()) {
    // The print mode keeps the RIP's own screens.
    CloseBlock(text_, L"Halftone Screening");
    return;
  }
  OpenBlock(text_, L"Max Super Screen");
  text_.Append(L"%\r\n");
  text_.Append(halftones.GetUseSuperCell() ? L"  <</MaxSuperScreen 1024>> setuserparams\r\n"
                                           : L"  <</MaxSuperScreen 0>> setuserparams\r\n");
  CloseBlock(text_, L"Max Super Screen");

  std::vector<CPMHalftoneOption> screens;
  for (const std::wstring& plate : HalftonePlates(mode_, *printer)) {
    screens.push_back(ScreenFor(halftones, plate));
  }

  // The plate dispatch: the RIP calls PlateColor with the separation's name.
  // When the job may set its own screens the print mode's are set plainly;
  // otherwise screens are locked and each setscreen is let through alone.
  const bool plain = halftones.GetUseAppHalftoning();
  text_.Append(L"\r\nuserdict begin\r\n");
  text_.Append(L"/PlateColor\r\n");
  text_.Append(L"{\r\n");
  text_.Append(L"/thePlate exch def /thePlateFound false def\r\n");
  for (const CPMHalftoneOption& screen : screens) {
    // The separation name is tested as a string: escaped, any name keeps it whole.
    CPMHalftoneOption line = screen;
    line.SetName(EscapeString(screen.GetName()));
    text_.Append(L"thePlate ");
    line.AppendDSCPostscript(text_, plain);
  }
  const CPMHalftoneOption fallback = ScreenFor(halftones, L"Spot");
  text_.AppendFormat(L"thePlateFound not {%d %.4f statusdict /%s get setscreen} if\r\n",
                     static_cast<int>(fallback.GetFrequency()), fallback.GetAngle(),
                     CPMHalftoneOption::GetShapePostScriptName(fallback.GetShape()));
  text_.Append(L"} def\r\n");
  text_.Append(L"end\r\n");

  // The N-colour screens: the black screen is the default; a plate whose
  // screen equals one already given is an alias of it. Plates whose names
  // cannot be PostScript names fall to the default.
  const CPMHalftoneOption black = ScreenFor(halftones, L"Black");
  text_.Append(L"\r\nprinter_desc begin\r\n");
  text_.Append(L"  NColor begin\r\n");
  text_.Append(L"    /Screens <<\r\n");
  text_.Append(L"      /HalftoneType 9 /SubType 2\r\n");
  text_.Append(L"      /Default <<\r\n");
  AppendScreenBody(text_, black);
  std::vector<const CPMHalftoneOption*> written = {&black};
  black.AppendHFTPostscript(text_);
  for (const CPMHalftoneOption& screen : screens) {
    if (screen.GetPlate() == L"Black" || !IsPostScriptName(screen.GetPlate())) {
      continue;
    }
    const auto same = std::find_if(written.begin(), written.end(), [&screen](const CPMHalftoneOption* other) {
      return SameScreen(*other, screen);
    });
    if (same != written.end()) {
      text_.AppendFormat(L"      /%s /%s\r\n", screen.GetPlate(), (*same)->GetPlate());
    } else {
      screen.AppendHFTPostscript(text_);
      written.push_back(&screen);
    }
  }
  text_.Append(L"    >> def\r\n");
  text_.Append(L"  end\r\n");
  text_.Append(L"end\r\n");

  if (halftones.GetUseAppHalftoning() || !halftones.GetUseAppSpotFunction()) {
    text_.Append(L"\r\nuserdict begin\r\n");
    if (halftones.GetUseAppHalftoning()) {
      text_.Append(L"  $Enable-Screen\r\n");  // the job's own screens are welcome
    }
    if (!halftones.GetUseAppSpotFunction()) {
      text_.Append(L"  $Disable-Spotfunction\r\n");  // the job's spot functions are not
    }
    text_.Append(L"end\r\n");
  }
  CloseBlock(text_, L"Halftone Screening");
}

void CPostscriptSetup::WritePrinterOptions(const CPrinterData* printer) {
  if (printer == nullptr) {
    return;
  }
  const CPMPrinterOptionsData& options = *mode_.GetPrinterOptions();
  OpenBlock(text_, L"Printer Options");
  text_.Append(kCrLf);
  const std::wstring resolution = options.GetResolutionName();
  if (!resolution.empty()) {
    text_.Append(resolution).Append(kCrLf);
  }
  const std::wstring colorMode = options.GetColorMode();
  if (!colorMode.empty()) {
    text_.Append(colorMode).Append(kCrLf);
  }
  for (const auto& [key, value] : options.GetOptions()) {
    if (key.empty() || value.empty() || key == kResolutionOption || key == kColorPlaneOption) {
      continue;
    }
    if (printer->GetOptions().Get(key.c_str(), false) != nullptr) {
      text_.AppendFormat(L"%s %s\r\n", value, key);
    }
  }
  CloseBlock(text_, L"Printer Options");
}

// --- further blocks -------------------------------------------------------

void CPostscriptSetup::WriteSaturation() {
  const int saturation = mode_.GetImageAdjust()->GetSaturation();
  if (saturation == 100) {
    return;
  }
  // The saturation matrix: a mix of the identity and the luminance
  // projection (weights of linear RGB), s = 1 keeps colours, s = 0 greys them.
  const double s = saturation / 100.0;
  constexpr std::array<double, 3> kLuminance = {0.3086, 0.6094, 0.0820};
  OpenBlock(text_, L"Saturation / Hue");
  text_.Append(L"\r\nuserdict begin\r\n");
  text_.Append(L"  /imagecolmatrix [\r\n");
  for (int row = 0; row < 3; ++row) {
    std::array<double, 3> m{};
    for (int column = 0; column < 3; ++column) {
      m[column] = (1.0 - s) * kLuminance[column] + (row == column ? s : 0.0);
    }
    text_.AppendFormat(L"  %f %f %f\r\n", m[0], m[1], m[2]);
  }
  text_.Append(L"  ] def\r\n");
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"Saturation / Hue");
}

void CPostscriptSetup::WriteMaxInk(formatstringT& buffer, unsigned size, bool images, bool table) const {
  const CPMMaxInkData& maxInk = *mode_.GetMaxInkEx();
  if (!maxInk.GetEnable() && !maxInk.UseOldMaxInk()) {
    return;
  }
  // The old single limit stands for all three.
  const bool old = maxInk.UseOldMaxInk();
  const double limit = old ? maxInk.GetOldMaxInk() : maxInk.GetValueB();
  const double imageLimit = old ? maxInk.GetOldMaxInk() : maxInk.GetValueC();
  const double knee = old ? 0.0 : std::clamp(maxInk.GetValueA(), 0.0, CPMMaxInkData::kFullInk);
  OpenBlock(buffer, L"MaxInk");
  buffer.Append(L"\r\nuserdict begin\r\n");
  buffer.AppendFormat(L"   /MaxInk %f def\r\n", limit);
  if (images) {
    buffer.AppendFormat(L"   /MaxImageInk %f def\r\n", imageLimit);
  }
  if (table && size > 0) {
    // Total ink in (0..400 %) to total ink out, as a fraction of 400 %:
    // unchanged up to the knee A, then compressed so that 400 % lands on the limit.
    buffer.Append(L"  /InkLimit [\r\n\r\n");
    for (unsigned k = 0; k < size; ++k) {
      const double in = size == 1 ? CPMMaxInkData::kFullInk : CPMMaxInkData::kFullInk * k / (size - 1);
      double out = in;
      if (in > knee && knee < CPMMaxInkData::kFullInk) {
        out = knee + (in - knee) * (limit - knee) / (CPMMaxInkData::kFullInk - knee);
      }
      buffer.AppendFormat(k % 8 == 0 ? L"  %4.3f" : L" %4.3f", out / CPMMaxInkData::kFullInk);
      if (k % 8 == 7 || k + 1 == size) {
        buffer.Append(kCrLf);
      }
    }
    buffer.Append(L"  ] def\r\n");
  }
  buffer.Append(L"end\r\n");
  CloseBlock(buffer, L"MaxInk");
}

void CPostscriptSetup::WriteMirror() {
  if (!mode_.GetMirror()) {
    return;
  }
  OpenBlock(text_, L"Mirror");
  text_.Append(L"\r\nuserdict begin\r\n");
  text_.Append(L"  DefaultCTM.Mirror\r\n");
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"Mirror");
}

void CPostscriptSetup::WriteInvert() {
  if (!mode_.GetInvert()) {
    return;
  }
  OpenBlock(text_, L"Invert");
  text_.Append(L"\r\n userdict /?Invert? known not\r\n");
  text_.Append(L"{\r\n");
  text_.Append(L"  /?Invert? true def\r\n");
  for (const wchar_t* extra : {L"", L"extra"}) {
    for (const LevelTable& table : kLevelTables) {
      // The hex2 extra table is filled from the red extra table: set-ups
      // already in use depend on this, so it stays.
      const std::wstring source =
          std::wstring_view(extra).empty() || std::wstring_view(table.name) != L"hex2" ? table.name : L"red";
      text_.AppendFormat(
          L"  userdict /%s%stransfertable known { 0 1 255 { dup %s%stransfertable exch get 255 exch sub "
          L"%s%stransfertable 3 1 roll put } for } if\r\n",
          table.name, extra, source, extra, table.name, extra);
    }
  }
  text_.Append(L"} if\r\n");
  CloseBlock(text_, L"Invert");
}

void CPostscriptSetup::WriteICC(const CPrinterData* printer) {
  const CPMICCProfileData& icc = *mode_.GetICCProfiles();
  if (printer == nullptr || !icc.IsEnabled()) {
    return;
  }
  OpenBlock(text_, L"ICC Profiles");
  text_.Append(L"\r\nuserdict begin\r\n");
  text_.Append(L"  /clinks <<\r\n");
  text_.Append(L"    /Root (%Lumascript%clinks)\r\n");
  // The input slots in use, then the output profile when there is one.
  for (int slot : {ICC_LA_RGB_PATH, ICC_LA_LAB_PATH, ICC_LA_CMYK_PATH, ICC_BMP_RGB_PATH, ICC_BMP_LAB_PATH,
                   ICC_BMP_CMYK_PATH, ICC_OUT_DEVICE_PATH}) {
    const std::wstring path = icc.GetICCPath(slot);
    if (slot == ICC_OUT_DEVICE_PATH ? path.empty() : !icc.GetICCUsed(slot)) {
      continue;
    }
    const std::wstring key = CPMICCProfileData::PathStringFromEnum(slot);
    CICCInfo info;
    icc.GetICCInfo(CICCInfo::GetICCInfoKey(key), info);
    std::wstring links;
    for (const std::wstring& link : info.links) {
      links += L'(' + EscapeString(link) + L')';
    }
    text_.AppendFormat(L"    /%s << /Path (%s) /Intent (%s) /Links [%s] >>\r\n", key, EscapeString(path),
                       info.GetIntentStr(), links);
  }
  text_.Append(L"  >> def\r\n");
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"ICC Profiles");
}

void CPostscriptSetup::WriteImageSampling() {
  const int sampling = mode_.GetImageAdjust()->GetSampling();
  if (sampling == 0) {
    return;
  }
  // Sampling is the percentage of the image's resolution the RIP keeps.
  OpenBlock(text_, L"Image Sampling");
  text_.Append(kCrLf);
  text_.AppendFormat(L"<< /Password() /IntermediateScale %f >> setsystemparams\r\n", sampling / 100.0);
  text_.AppendFormat(L"%d ImageSampling\r\n", sampling);
  CloseBlock(text_, L"Image Sampling");
}

void CPostscriptSetup::WriteSharpenBlur() {
  const int blur = mode_.GetImageAdjust()->GetBlur();
  if (blur == 0) {
    return;
  }
  // Blur is negative sharpening: a blur of 25 is a sharpen of -0.25.
  OpenBlock(text_, L"Sharpen Blur");
  text_.Append(kCrLf);
  text_.AppendFormat(L"<< /Password() /Sharpen %f >> setsystemparams\r\n", -blur / 100.0);
  CloseBlock(text_, L"Sharpen Blur");
}

void CPostscriptSetup::FencePointArray(formatstringT& text, int low, int high) {
  Table table;
  for (int i = 0; i < 256; ++i) {
    table[i] = i < low ? 0 : (i < high ? 1 : 2);
  }
  AppendTable(text.str(), table, L"\n");
}

void CPostscriptSetup::WriteFencePoints() {
  const CPMFencePointData& fences = *mode_.GetFencePointData();
  if (!fences.GetEnabled() || fences.GetColorMap().empty()) {
    return;
  }
  OpenBlock(text_, L"Fence Points Setup");
  text_.Append(L"\r\nuserdict begin\r\n");
  // Each ink's fence profile is a file of the RIP's writable folder named
  // after its four levels, three digits each.
  text_.Append(L"/FencePointFiles <<\r\n");
  for (const auto& [ink, position] : fences.GetColorMap()) {
    FenceProfile profile;
    if (!fences.GetProfile(position, profile)) {
      continue;
    }
    text_.AppendFormat(L"  (%s) (", EscapeString(ink));
    text_.AppendFormat(L"%%LumascriptWritable%%fps/%3.3d%3.3d%3.3d%3.3d", profile[0], profile[1], profile[2],
                       profile[3]);
    text_.Append(L")\r\n");
  }
  text_.Append(L">> def\r\n");
  text_.Append(L"/TriDomainTable <\n");
  FencePointArray(text_, fences.GetTDLow(), fences.GetTDHigh());
  text_.Append(L"> def\r\n");
  text_.Append(L"end\r\n");
  CloseBlock(text_, L"Fence Points Setup");
}

// --- PDF forms of the level curves ------------------------------------------

std::wstring CPostscriptSetup::WritePDFLevelCurve(unsigned planeIndex) const {
  formatstringT out;
  if (const CPMCurveData* curve = LevelCurve(planeIndex)) {
    curve->GetPDFPrefix(out);
  }
  return out.str();
}

void CPostscriptSetup::WritePDFLevelTransferCurves(bool inverted, std::wstring& text) const {
  formatstringT out;
  for (const LevelTable& table : kLevelTables) {
    out.AppendFormat(L"%s: ", table.name);
    if (const CPMCurveData* curve = LevelCurve(table.plane)) {
      if (inverted) {
        curve->GetPDFPrefixInverted(out);
      } else {
        curve->GetPDFPrefix(out);
      }
    }
    out.Append(kCrLf);
  }
  text = out.str();
}

// --- the print mode's PostScript save ------------------------------------------

bool CPrintModeData::SavePostscriptSetup(const std::wstring& path) {
  CPostscriptSetup setup(*this);
  setup.WritePostscriptSection();
  std::wstring error;
  if (!WriteFileAtomically(path, setup.GetBytes(), &error)) {
    ShowMessage(error, L"Error");
    return false;
  }
  return true;
}

}  // namespace tarn
