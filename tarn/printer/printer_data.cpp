// Reader of printer definition files (.pdx):
//
//   <PRINTERLIST>
//   	<PRINTER version="3">
//   		<LONGNAME>Aurora 64</LONGNAME>
//   		<TCPPORT>9100</TCPPORT>
//   		<ABORTCMD>1B 40</ABORTCMD>
//   		<DEFAULTPAGE><SIZE>A4</SIZE><ROLLMODE>1</ROLLMODE><ROLLWIDTH>64</ROLLWIDTH></DEFAULTPAGE>
//   		<RES>...</RES>
//   	</PRINTER>
//   </PRINTERLIST>
//
// Every key is a row of one field table (see docs/records.md); the keys with
// rules of their own are its hand-written rows.

#include "tarn/printer/printer_data.h"

#include <climits>
#include <cmath>
#include <string_view>
#include <vector>

#include "tarn/foundation/format.h"
#include "tarn/foundation/internal/fields.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"

namespace tarn {

int CPrinterBase::nMediaWidthLimit = 0;
int CPrinterBase::nMediaHeightLimit = 0;

namespace {

constexpr const char* kPrinterList = "PRINTERLIST";
constexpr const char* kPrinter = "PRINTER";
constexpr const char* kVersion = "version";

// Keys with rules of their own.
constexpr const char* kSNMP = "SNMP";
constexpr const char* kSNMPDeviceName = "SNMP_DeviceName";
constexpr const char* kUSBDeviceName = "USB_DeviceName";
constexpr const char* kGenericDeviceName = "Generic_DeviceName";
constexpr const char* kISOLABRef = "ISOLABRef";
constexpr const char* kDataMonitor = "DATAMONITOR";
constexpr const char* kAbortCommand = "ABORTCMD";
constexpr const char* kCosting = "COSTING";
constexpr const char* kDashboardKey = "EPSONDASHBOARD";
constexpr const char* kPageSizeOffset = "PAGESIZE_OFFSET";
constexpr const char* kInkList = "INKLIST";

constexpr std::wstring_view kExternalPrefix = L"External:";
constexpr const wchar_t* kExternalMonitor = L"External";
constexpr const wchar_t* kLaserCosting = L"Laser";
constexpr const wchar_t* kResolutionPMI = L"ResolutionPMI";

constexpr const wchar_t* kPrintersFolder = L"System\\printers\\";
constexpr std::wstring_view kPDXExtension = L".pdx";
// Deep enough for a maker's folder holding model folders; stops link loops.
constexpr int kMaxSearchDepth = 3;

constexpr double kMillimetresPerInch = 25.4;

// round(value x 1000) as "add 0.5 and truncate", kept inside the range of the
// integer so that hostile sizes cannot overflow; NaN never matches anything.
long long Thousandths(double value) {
  if (std::isnan(value)) {
    return LLONG_MIN;
  }
  const double scaled = value * 1000.0 + 0.5;
  constexpr double kLimit = 9.0e18;
  if (scaled >= kLimit) {
    return static_cast<long long>(kLimit);
  }
  if (scaled <= -kLimit) {
    return -static_cast<long long>(kLimit);
  }
  return static_cast<long long>(scaled);
}

int HexDigit(wchar_t c) {
  if (c >= L'0' && c <= L'9') {
    return c - L'0';
  }
  if (c >= L'a' && c <= L'f') {
    return c - L'a' + 10;
  }
  if (c >= L'A' && c <= L'F') {
    return c - L'A' + 10;
  }
  return -1;
}

bool HasPDXExtension(const std::wstring& name) {
  return name.size() >= kPDXExtension.size() &&
         EqualsNoCase(std::wstring_view(name).substr(name.size() - kPDXExtension.size()), kPDXExtension);
}

// Looks for file (a plain name) in the sub-folders of folder, depth first in
// name order.
bool FindInSubFolders(const std::wstring& folder, const std::wstring& file, int depth, std::wstring& path) {
  if (depth > kMaxSearchDepth) {
    return false;
  }
  for (const FolderEntry& entry : FindFiles(folder + L"*")) {
    if (!entry.is_folder) {
      continue;
    }
    const std::wstring sub = folder + entry.name + L"\\";
    for (const FolderEntry& match : FindFiles(sub + file)) {
      if (!match.is_folder) {
        path = sub + match.name;
        return true;
      }
    }
    if (FindInSubFolders(sub, file, depth + 1, path)) {
      return true;
    }
  }
  return false;
}

CCustomDef* FindOption(CCustomDef& option, const wchar_t* name, bool byName) {
  if ((byName ? option.GetName() : option.GetProc()) == name) {
    return &option;
  }
  for (CCustomDef& nested : option.GetOptions()) {
    if (CCustomDef* found = FindOption(nested, name, byName)) {
      return found;
    }
  }
  return nullptr;
}

bool AnyHTMOption(const CCustomDef& option) {
  if (option.IsHTM()) {
    return true;
  }
  for (const CCustomDef& nested : option.GetOptions()) {
    if (AnyHTMOption(nested)) {
      return true;
    }
  }
  return false;
}

}  // namespace

// --- the extra lookups of the lists -----------------------------------------

CCustomDef* COptionMap::Get(const wchar_t* name, bool byName) const {
  if (name == nullptr) {
    return nullptr;
  }
  for (const auto& entry : m_map) {
    if (!entry.second) {
      return nullptr;
    }
    if (CCustomDef* found = FindOption(*entry.second, name, byName)) {
      return found;
    }
  }
  return nullptr;
}

namespace {

// The first definition whose other name (as given by getter) equals name,
// ignoring case; null for a null name or none.
template <typename Map, typename Getter>
auto FindByOtherName(const Map& map, const wchar_t* name, Getter getter)
    -> decltype(map.begin()->second.get()) {
  if (name == nullptr) {
    return nullptr;
  }
  for (const auto& entry : map) {
    if (entry.second && EqualsNoCase((entry.second.get()->*getter)(), name)) {
      return entry.second.get();
    }
  }
  return nullptr;
}

}  // namespace

CColorDef* CColorMap::Get(const wchar_t* name, bool bySecondName) const {
  return bySecondName ? FindByOtherName(m_map, name, &CColorDef::GetDisplayName) : CGenericMap::Get(name);
}

CPageSizeDef* CPageMap::Get(const wchar_t* name, bool byPostScriptName) const {
  return byPostScriptName ? FindByOtherName(m_map, name, &CPageSizeDef::GetPSName) : CGenericMap::Get(name);
}

bool CPageMap::IsPageSupported(double width, double height) const {
  if (m_map.empty()) {
    return false;
  }
  const long long wantWidth = Thousandths(width);
  const long long wantHeight = Thousandths(height);
  bool larger = false;
  for (const auto& entry : m_map) {
    if (!entry.second) {
      break;
    }
    const long long fullWidth = Thousandths(entry.second->GetFullWidth());
    const long long fullDepth = Thousandths(entry.second->GetFullDepth());
    if (wantWidth == fullWidth && wantHeight == fullDepth) {
      return true;
    }
    // Strictly larger both ways: equal in one direction is not a hit.
    if (wantWidth > fullWidth && wantHeight > fullDepth) {
      larger = true;
    }
  }
  return larger;
}

// --- CPrinterBase ------------------------------------------------------------

// The keys in file order. Defaults live in the member initialisers; the keys
// with rules of their own are Custom rows.
struct CPrinterBase::Fields {
  using B = CPrinterBase;
  using F = internal::Field<B>;
  using Context = internal::ReadContext;

  static void ReadSNMP(B& b, const pugi::xml_node& child, Context& /*c*/) { b.m_snmp.ReadXML(child); }
  static void ReadSNMPName(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.m_snmpDeviceName.ReadXML(child);
  }
  static void ReadUSBName(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.m_usbDeviceName.ReadXML(child);
  }
  static void ReadGenericName(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.m_genericDeviceName.ReadXML(child);
  }
  static void ReadISOLABRef(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.m_isoLabRef.ReadXML(child);
  }
  static void ReadAbortCommand(B& b, const pugi::xml_node& child, Context& /*c*/) {
    ParseHex(xml::ReadText(child), b.m_abortCommand);
  }
  // Only sets the flag, and only for this exact text.
  static void ReadCosting(B& b, const pugi::xml_node& child, Context& /*c*/) {
    if (xml::ReadText(child) == kLaserCosting) {
      b.m_costingLaser = true;
    }
  }
  static void ReadDashboard(B& b, const pugi::xml_node& child, Context& /*c*/) {
    if (xml::ReadText(child) == kResolutionPMI) {
      b.m_dashboardResolutionPMI = true;
    }
  }
  static void ReadPageOffset(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.ReadPageSizeOffset(child);
  }
  // "External:Name" names a monitor outside the RIP.
  static void ReadDataMonitor(B& b, const pugi::xml_node& child, Context& /*c*/) {
    b.m_dataMonitor = xml::ReadText(child);
    if (b.m_dataMonitor.find(kExternalPrefix) != std::wstring::npos) {
      b.m_externalDataMonitor = b.m_dataMonitor;
      for (size_t at; (at = b.m_externalDataMonitor.find(kExternalPrefix)) != std::wstring::npos;) {
        b.m_externalDataMonitor.erase(at, kExternalPrefix.size());
      }
      b.m_dataMonitor = kExternalMonitor;
    }
  }

  static const internal::FieldTable<B>& Table() {
    static const internal::FieldTable<B> table(
        nullptr, {
                     F::Custom(kSNMP, &ReadSNMP, nullptr),
                     F::Custom(kSNMPDeviceName, &ReadSNMPName, nullptr),
                     F::Custom(kUSBDeviceName, &ReadUSBName, nullptr),
                     F::Custom(kGenericDeviceName, &ReadGenericName, nullptr),
                     F::Custom(kISOLABRef, &ReadISOLABRef, nullptr),
                     F::Custom(kAbortCommand, &ReadAbortCommand, nullptr),
                     F::Custom(kCosting, &ReadCosting, nullptr),
                     F::Custom(kDashboardKey, &ReadDashboard, nullptr),
                     F::Custom(kPageSizeOffset, &ReadPageOffset, nullptr),
                     F::Text("LONGNAME", &B::m_longName),
                     F::Text("SHORTNAME", &B::m_shortName),
                     F::Text("PORT", &B::m_port),
                     F::Bool("TCP", &B::m_portTCP).In("PORTSETUP"),
                     F::Bool("USB", &B::m_portUSB).In("PORTSETUP"),
                     F::Bool("LPT", &B::m_portLPT).In("PORTSETUP"),
                     F::Bool("COM", &B::m_portCOM).In("PORTSETUP"),
                     F::Text("SPECIAL", &B::m_special),
                     F::Text("MULTIIMAGE", &B::m_multiImage),
                     F::Text("DPIDEFAULT", &B::m_dpiDefault),
                     F::Text("COLORDEFAULT", &B::m_colorDefault),
                     F::Text("DEVICEID", &B::m_deviceId),
                     F::Custom(kDataMonitor, &ReadDataMonitor, nullptr),
                     F::Text("DFORMATDRIVER", &B::m_dFormatDriver),
                     F::Text("CUTTERINI", &B::m_cutterIni),
                     F::Text("DEFSTRAT", &B::m_defStrat),
                     F::Text("BREVIAPALETTE", &B::m_breviaPalette),
                     F::Int("BITS", &B::m_bits),
                     F::Int("TIMEOUTI", &B::m_timeoutI),
                     F::Int("TIMEOUTR", &B::m_timeoutR),
                     F::Int("TIMEOUTS", &B::m_timeoutS),
                     F::Int("SCANLIMIT", &B::m_scanLimit),
                     F::Int("FRAMEDIFF", &B::m_frameDiff),
                     F::Int("DEVFRAME", &B::m_devFrame),
                     F::Int("DEVSCAN", &B::m_devScan),
                     F::Int("DEVAUTO", &B::m_devAuto),
                     F::Bool("SINGLEPASS", &B::m_singlePass),
                     F::Bool("CUTDEVICE", &B::m_cutDevice),
                     F::Bool("SPOTDEVICE", &B::m_spotDevice),
                     F::Int("HALFTONE", &B::m_halftone),
                     F::Text("HALFTONEPALETTE", &B::m_halftonePalette),
                     F::Bool("ALLOW8BITHALFTONE", &B::m_allow8BitHalftone),
                     F::Int("CONCURRENTPLANES", &B::m_concurrentPlanes),
                     F::Bool("SHOWRESOLUTIONS", &B::m_showResolutions),
                     F::Bool("SHOWCOLORS", &B::m_showColors),
                     F::Bool("REWIND", &B::m_rewind),
                     F::Bool("MULTIHITFOIL", &B::m_multiHitFoil),
                     F::Bool("STRIPBLANKPLANES", &B::m_stripBlankPlanes),
                     F::Bool("FOILINFO", &B::m_foilInfo),
                     F::Bool("LAYERDEVICE", &B::m_layerDevice),
                     F::Bool("CONCURRENTPRIME", &B::m_concurrentPrime),
                     F::Bool("DYNAMICPLANES", &B::m_dynamicPlanes),
                     F::Bool("MULTIPLEPRIME", &B::m_multiplePrime),
                     F::Bool("LASERDEVICE", &B::m_laserDevice),
                     F::Int("BYTEALIGNMENT", &B::m_byteAlignment),
                     F::Bool("WINDOWSPRIMEDEVICE", &B::m_windowsPrimeDevice),
                     F::Bool("RIGHTSIDEORIGIN", &B::m_rightSideOrigin),
                     F::Bool("COLORCLEAR", &B::m_colorClear),
                     F::Bool("PDFOUTPUT", &B::m_pdfOutput),
                     F::Bool("SETINKORDER", &B::m_setInkOrder),
                     F::Text("SLOTDISPLAY", &B::m_slotDisplay).In("INKREORDER"),
                     F::Text("COLORMAP", &B::m_inkReorderColorMap).In("INKREORDER"),
                     F::Bool("PAGEVMIRROR", &B::m_pageVMirror),
                     F::Int("SECONDARYPORTTYPE", &B::m_secondaryPortType),
                     F::Bool("LAYERSEPARATEDPREVIEW", &B::m_layerSeparatedPreview),
                     F::Text("TCPPORT", &B::m_tcpPort),
                     F::Bool("DUPLEX", &B::m_duplex),
                     F::Text("PMCTYPE", &B::m_pmcType),
                     F::Text("SIZE", &B::m_defaultPageSize).In("DEFAULTPAGE"),
                     F::Bool("ROLLMODE", &B::m_rollMode).In("DEFAULTPAGE"),
                     F::Real("ROLLWIDTH", &B::m_rollWidth).In("DEFAULTPAGE"),
                     F::Bool("PORTRAIT", &B::m_portrait).In("DEFAULTPAGE"),
                     F::Bool("STRETCHPAGESIZE", &B::m_stretchPageSize),
                     F::Real("HSTRETCH", &B::m_hStretch),
                     F::Real("VSTRETCH", &B::m_vStretch),
                     F::Bool("PCDECALMODE", &B::m_pcDecalMode),
                     F::Bool("NOQCOPIES", &B::m_noQCopies),
                     // Spelled with one D in the files that exist; keep it.
                     F::Int("EMBEDEDPREVIEWFORMAT", &B::m_embeddedPreviewFormat),
                     F::Text("PRINTER_SERIES", &B::m_printerSeries),
                     F::Bool("GDIALLOWCUSTOMPAGE", &B::m_gdiAllowCustomPage),
                     F::Text("GDIORIGINALNAME", &B::m_gdiOriginalName),
                     F::Real("GDINONPRINTABLE_X", &B::m_gdiNonPrintableX),
                     F::Real("GDINONPRINTABLE_Y", &B::m_gdiNonPrintableY),
                     F::Bool("EXPOSE_INSTALLED_QUEUES", &B::m_exposeInstalledQueues),
                     F::Text("CUSTOM_PRINTER_STATUS", &B::m_customPrinterStatus),
                 });
    return table;
  }
};

CPrinterBase::CPrinterBase() = default;

void CPrinterBase::SetDefaults() {
  static const CPrinterBase kDefaults;
  Fields::Table().Assign(kDefaults, *this);
  m_version = 0;
  m_snmp.SetDefaults();
  m_snmpDeviceName.SetDefaults();
  m_usbDeviceName.SetDefaults();
  m_genericDeviceName.SetDefaults();
  m_isoLabRef.SetDefaults();
  m_externalDataMonitor.clear();
  m_abortCommand.clear();
  m_costingLaser = false;
  m_dashboardResolutionPMI = false;
  m_pageOffsetGiven = false;
  m_pageOffsetX = 0.0;
  m_pageOffsetY = 0.0;
  // The device type and the drop volumes belong to the host, not to the file:
  // a re-read keeps them.
}

bool CPrinterBase::ReadXML(const pugi::xml_node& printer, bool keepCurrent) {
  if (!keepCurrent) {
    SetDefaults();
  }
  if (!printer) {
    return false;
  }
  pugi::xml_attribute version = printer.attribute(kVersion);
  if (!version) {
    version = printer.parent().attribute(kVersion);
  }
  if (version) {
    m_version = version.as_uint();
  }
  Fields::Table().Read(*this, printer, internal::Start::kCurrent);
  if (nMediaWidthLimit != 0 && m_rollWidth > nMediaWidthLimit) {
    m_rollWidth = nMediaWidthLimit;
  }
  return true;
}

void CPrinterBase::ReadPageSizeOffset(const pugi::xml_node& node) {
  bool inches = false;
  for (pugi::xml_attribute attribute : node.attributes()) {
    const std::string_view name = attribute.name();
    const std::wstring value = FromUtf8(attribute.value());
    if (name == "top" || name == "bottom") {
      m_pageOffsetY += ToReal(value);
    } else if (name == "left" || name == "right") {
      m_pageOffsetX += ToReal(value);
    } else if (name == "units" && value == L"in") {
      inches = true;
    }
  }
  // Millimetres unless the element says inches. The division applies to the
  // whole sum, earlier offsets included, as the definitions in use expect.
  if (!inches) {
    m_pageOffsetX /= kMillimetresPerInch;
    m_pageOffsetY /= kMillimetresPerInch;
  }
  m_pageOffsetGiven = true;
}

bool CPrinterBase::ParseHex(const std::wstring& text, std::string& out) {
  out.clear();
  size_t i = 0;
  const auto isSeparator = [](wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\r' || c == L'\n' || c == L',' || c == L';';
  };
  while (i < text.size()) {
    if (isSeparator(text[i])) {
      ++i;
      continue;
    }
    if (text[i] == L'0' && i + 1 < text.size() && (text[i + 1] == L'x' || text[i + 1] == L'X')) {
      i += 2;
    }
    const size_t start = i;
    while (i < text.size() && HexDigit(text[i]) >= 0) {
      ++i;
    }
    const size_t digits = i - start;
    if (digits == 0 || (i < text.size() && !isSeparator(text[i])) || (digits > 1 && digits % 2 != 0)) {
      out.clear();
      return false;
    }
    if (digits == 1) {
      out.push_back(static_cast<char>(HexDigit(text[start])));
      continue;
    }
    for (size_t at = start; at < i; at += 2) {
      out.push_back(static_cast<char>(HexDigit(text[at]) * 16 + HexDigit(text[at + 1])));
    }
  }
  return true;
}

bool CPrinterBase::QueryGDIPaper(PrinterPaper& paper) const {
  paper = PrinterPaper();
  if (m_gdiOriginalName.empty() || !QueryPrinterPaper(m_gdiOriginalName, paper)) {
    paper = PrinterPaper();
    return false;
  }
  // A printer that answers with no paper size code has no usable paper.
  return paper.code != 0;
}

// --- CPrinterData ------------------------------------------------------------

CPrinterData::CPrinterData(const CPrinterData& other) = default;

CPrinterData& CPrinterData::operator=(const CPrinterData& other) {
  if (this == &other) {
    return *this;
  }
  CPrinterBase::operator=(other);
  // The maps' own assignment merges; a printer is replaced whole.
  m_buttons.clear();
  m_buttons = other.m_buttons;
  m_resolutions.clear();
  m_resolutions = other.m_resolutions;
  m_colors.clear();
  m_colors = other.m_colors;
  m_options.clear();
  m_options = other.m_options;
  m_pages.clear();
  m_pages = other.m_pages;
  m_spots.clear();
  m_spots = other.m_spots;
  m_dotProfiles.clear();
  m_dotProfiles = other.m_dotProfiles;
  m_inkList = other.m_inkList;
  m_loaded = other.m_loaded;
  m_hasInkList = other.m_hasInkList;
  m_driverName = other.m_driverName;
  return *this;
}

void CPrinterData::Reset() {
  SetDefaults();
  m_buttons.clear();
  m_resolutions.clear();
  m_colors.clear();
  m_options.clear();
  m_pages.clear();
  m_spots.clear();
  m_dotProfiles.clear();
  m_inkList.SetDefaults();
  m_loaded = false;
  m_hasInkList = false;
  m_driverName.clear();
}

bool CPrinterData::ReadXML(const pugi::xml_node& printer, bool keepCurrent) {
  if (!CPrinterBase::ReadXML(printer, keepCurrent)) {
    return false;
  }
  const auto readList = [&](auto& map) {
    if (!keepCurrent) {
      map.ReadXMLSection(printer);
      return;
    }
    for (pugi::xml_node child : printer.children()) {
      map.AddXMLObject(child);
    }
  };
  readList(m_buttons);
  readList(m_resolutions);
  readList(m_colors);
  readList(m_options);
  readList(m_pages);
  readList(m_spots);
  readList(m_dotProfiles);
  if (pugi::xml_node inks = printer.child(kInkList)) {
    m_inkList.ReadXML(inks);
    m_hasInkList = true;
  } else if (!keepCurrent) {
    m_inkList.SetDefaults();
    m_hasInkList = false;
  }
  return true;
}

bool CPrinterData::ReadDocument(const pugi::xml_document& document) {
  const pugi::xml_node printer = document.child(kPrinterList).child(kPrinter);
  if (!printer) {
    return false;
  }
  ReadXML(printer);
  m_loaded = true;
  return true;
}

bool CPrinterData::LoadFromString(std::string_view utf8) {
  Reset();
  pugi::xml_document document;
  if (!xml::LoadDocumentFromBuffer(document, utf8, kPrinterList) || !ReadDocument(document)) {
    Reset();
    return false;
  }
  return true;
}

bool CPrinterData::LoadFile(const std::wstring& path) {
  Reset();
  pugi::xml_document document;
  if (!xml::LoadDocument(document, path, kPrinterList) || !ReadDocument(document)) {
    Reset();
    return false;
  }
  std::wstring file;
  SplitPath(path, nullptr, &file);
  if (HasPDXExtension(file)) {
    file.resize(file.size() - kPDXExtension.size());
  }
  m_driverName = file;
  return true;
}

bool CPrinterData::LoadPrinter(const std::wstring& driver) {
  std::wstring path;
  if (!FindPDXPath(driver, path)) {
    Reset();
    return false;
  }
  return LoadFile(path);
}

bool CPrinterData::FindPDXPath(const std::wstring& driver, std::wstring& path) {
  path.clear();
  if (driver.empty() || driver.find_first_of(L"\\/:*?") != std::wstring::npos || driver == L"." ||
      driver == L"..") {
    return false;
  }
  const std::wstring folder = GetTarnRipFolder() + kPrintersFolder;
  const std::wstring file = HasPDXExtension(driver) ? driver : driver + std::wstring(kPDXExtension);
  for (const FolderEntry& match : FindFiles(folder + file)) {
    if (!match.is_folder) {
      path = folder + match.name;
      return true;
    }
  }
  return FindInSubFolders(folder, file, 1, path);
}

bool CPrinterData::HasAnyFMResolution() const {
  for (const auto& entry : m_resolutions) {
    if (entry.second && entry.second->IsFM()) {
      return true;
    }
  }
  return false;
}

bool CPrinterData::IsHTMPrinter() const {
  if (GetPMCType().find(L"HTM") == std::wstring::npos) {
    return false;
  }
  for (const auto& entry : m_options) {
    if (entry.second && AnyHTMOption(*entry.second)) {
      return true;
    }
  }
  return false;
}

}  // namespace tarn
