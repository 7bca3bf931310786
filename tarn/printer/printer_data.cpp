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
// The plain keys come from one table (tag, member, default) that both
// SetDefaults and ReadXML walk; the keys with rules of their own are read in
// ReadXML before the table is consulted.

#include "tarn/printer/printer_data.h"

#include <climits>
#include <cmath>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tarn/foundation/format.h"
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

struct CPrinterBase::Key {
  const char* group;  // the enclosing element, or null for a child of "PRINTER"
  const char* tag;
  std::wstring CPrinterBase::*text = nullptr;
  const wchar_t* textDefault = L"";
  int CPrinterBase::*integer = nullptr;
  bool CPrinterBase::*flag = nullptr;
  bool flagDefault = false;
  double CPrinterBase::*real = nullptr;
};

std::span<const CPrinterBase::Key> CPrinterBase::Keys() {
  using B = CPrinterBase;
  static const Key kKeys[] = {
      {.group = nullptr, .tag = "LONGNAME", .text = &B::m_longName},
      {.group = nullptr, .tag = "SHORTNAME", .text = &B::m_shortName},
      {.group = nullptr, .tag = "PORT", .text = &B::m_port},
      {.group = "PORTSETUP", .tag = "TCP", .flag = &B::m_portTCP, .flagDefault = true},
      {.group = "PORTSETUP", .tag = "USB", .flag = &B::m_portUSB, .flagDefault = true},
      {.group = "PORTSETUP", .tag = "LPT", .flag = &B::m_portLPT},
      {.group = "PORTSETUP", .tag = "COM", .flag = &B::m_portCOM},
      {.group = nullptr, .tag = "SPECIAL", .text = &B::m_special},
      {.group = nullptr, .tag = "MULTIIMAGE", .text = &B::m_multiImage},
      {.group = nullptr, .tag = "DPIDEFAULT", .text = &B::m_dpiDefault},
      {.group = nullptr, .tag = "COLORDEFAULT", .text = &B::m_colorDefault},
      {.group = nullptr, .tag = "DEVICEID", .text = &B::m_deviceId},
      {.group = nullptr, .tag = kDataMonitor, .text = &B::m_dataMonitor},
      {.group = nullptr, .tag = "DFORMATDRIVER", .text = &B::m_dFormatDriver},
      {.group = nullptr, .tag = "CUTTERINI", .text = &B::m_cutterIni},
      {.group = nullptr, .tag = "DEFSTRAT", .text = &B::m_defStrat},
      {.group = nullptr, .tag = "BREVIAPALETTE", .text = &B::m_breviaPalette},
      {.group = nullptr, .tag = "BITS", .integer = &B::m_bits},
      {.group = nullptr, .tag = "TIMEOUTI", .integer = &B::m_timeoutI},
      {.group = nullptr, .tag = "TIMEOUTR", .integer = &B::m_timeoutR},
      {.group = nullptr, .tag = "TIMEOUTS", .integer = &B::m_timeoutS},
      {.group = nullptr, .tag = "SCANLIMIT", .integer = &B::m_scanLimit},
      {.group = nullptr, .tag = "FRAMEDIFF", .integer = &B::m_frameDiff},
      {.group = nullptr, .tag = "DEVFRAME", .integer = &B::m_devFrame},
      {.group = nullptr, .tag = "DEVSCAN", .integer = &B::m_devScan},
      {.group = nullptr, .tag = "DEVAUTO", .integer = &B::m_devAuto},
      {.group = nullptr, .tag = "SINGLEPASS", .flag = &B::m_singlePass},
      {.group = nullptr, .tag = "CUTDEVICE", .flag = &B::m_cutDevice},
      {.group = nullptr, .tag = "SPOTDEVICE", .flag = &B::m_spotDevice},
      {.group = nullptr, .tag = "HALFTONE", .integer = &B::m_halftone},
      {.group = nullptr, .tag = "HALFTONEPALETTE", .text = &B::m_halftonePalette},
      {.group = nullptr, .tag = "ALLOW8BITHALFTONE", .flag = &B::m_allow8BitHalftone},
      {.group = nullptr, .tag = "CONCURRENTPLANES", .integer = &B::m_concurrentPlanes},
      {.group = nullptr, .tag = "SHOWRESOLUTIONS", .flag = &B::m_showResolutions, .flagDefault = true},
      {.group = nullptr, .tag = "SHOWCOLORS", .flag = &B::m_showColors, .flagDefault = true},
      {.group = nullptr, .tag = "REWIND", .flag = &B::m_rewind, .flagDefault = true},
      {.group = nullptr, .tag = "MULTIHITFOIL", .flag = &B::m_multiHitFoil},
      {.group = nullptr, .tag = "STRIPBLANKPLANES", .flag = &B::m_stripBlankPlanes},
      {.group = nullptr, .tag = "FOILINFO", .flag = &B::m_foilInfo},
      {.group = nullptr, .tag = "LAYERDEVICE", .flag = &B::m_layerDevice},
      {.group = nullptr, .tag = "CONCURRENTPRIME", .flag = &B::m_concurrentPrime},
      {.group = nullptr, .tag = "DYNAMICPLANES", .flag = &B::m_dynamicPlanes},
      {.group = nullptr, .tag = "MULTIPLEPRIME", .flag = &B::m_multiplePrime},
      {.group = nullptr, .tag = "LASERDEVICE", .flag = &B::m_laserDevice},
      {.group = nullptr, .tag = "BYTEALIGNMENT", .integer = &B::m_byteAlignment},
      {.group = nullptr, .tag = "WINDOWSPRIMEDEVICE", .flag = &B::m_windowsPrimeDevice},
      {.group = nullptr, .tag = "RIGHTSIDEORIGIN", .flag = &B::m_rightSideOrigin},
      {.group = nullptr, .tag = "COLORCLEAR", .flag = &B::m_colorClear},
      {.group = nullptr, .tag = "PDFOUTPUT", .flag = &B::m_pdfOutput},
      {.group = nullptr, .tag = "SETINKORDER", .flag = &B::m_setInkOrder},
      {.group = "INKREORDER", .tag = "SLOTDISPLAY", .text = &B::m_slotDisplay},
      {.group = "INKREORDER", .tag = "COLORMAP", .text = &B::m_inkReorderColorMap},
      {.group = nullptr, .tag = "PAGEVMIRROR", .flag = &B::m_pageVMirror},
      {.group = nullptr, .tag = "SECONDARYPORTTYPE", .integer = &B::m_secondaryPortType},
      {.group = nullptr, .tag = "LAYERSEPARATEDPREVIEW", .flag = &B::m_layerSeparatedPreview},
      {.group = nullptr, .tag = "TCPPORT", .text = &B::m_tcpPort, .textDefault = L"9100"},
      {.group = nullptr, .tag = "DUPLEX", .flag = &B::m_duplex},
      {.group = nullptr, .tag = "PMCTYPE", .text = &B::m_pmcType},
      {.group = "DEFAULTPAGE", .tag = "SIZE", .text = &B::m_defaultPageSize},
      {.group = "DEFAULTPAGE", .tag = "ROLLMODE", .flag = &B::m_rollMode},
      {.group = "DEFAULTPAGE", .tag = "ROLLWIDTH", .real = &B::m_rollWidth},
      {.group = "DEFAULTPAGE", .tag = "PORTRAIT", .flag = &B::m_portrait},
      {.group = nullptr, .tag = "STRETCHPAGESIZE", .flag = &B::m_stretchPageSize},
      {.group = nullptr, .tag = "HSTRETCH", .real = &B::m_hStretch},
      {.group = nullptr, .tag = "VSTRETCH", .real = &B::m_vStretch},
      {.group = nullptr, .tag = "PCDECALMODE", .flag = &B::m_pcDecalMode, .flagDefault = true},
      {.group = nullptr, .tag = "NOQCOPIES", .flag = &B::m_noQCopies},
      // Spelled with one D in the files that exist; keep it.
      {.group = nullptr, .tag = "EMBEDEDPREVIEWFORMAT", .integer = &B::m_embeddedPreviewFormat},
      {.group = nullptr, .tag = "PRINTER_SERIES", .text = &B::m_printerSeries},
      {.group = nullptr, .tag = "GDIALLOWCUSTOMPAGE", .flag = &B::m_gdiAllowCustomPage},
      {.group = nullptr, .tag = "GDIORIGINALNAME", .text = &B::m_gdiOriginalName},
      {.group = nullptr, .tag = "GDINONPRINTABLE_X", .real = &B::m_gdiNonPrintableX},
      {.group = nullptr, .tag = "GDINONPRINTABLE_Y", .real = &B::m_gdiNonPrintableY},
      {.group = nullptr, .tag = "EXPOSE_INSTALLED_QUEUES", .flag = &B::m_exposeInstalledQueues},
      {.group = nullptr, .tag = "CUSTOM_PRINTER_STATUS", .text = &B::m_customPrinterStatus},
  };
  return kKeys;
}

CPrinterBase::CPrinterBase() {
  SetDefaults();
}

void CPrinterBase::SetDefaults() {
  for (const Key& key : Keys()) {
    if (key.text) {
      this->*key.text = key.textDefault;
    } else if (key.integer) {
      this->*key.integer = 0;
    } else if (key.flag) {
      this->*key.flag = key.flagDefault;
    } else if (key.real) {
      this->*key.real = 0.0;
    }
  }
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

  const auto readKey = [this](const Key& key, const pugi::xml_node& node) {
    if (key.text) {
      this->*key.text = xml::ReadText(node);
    } else if (key.integer) {
      this->*key.integer = xml::ReadInt(node);
    } else if (key.flag) {
      this->*key.flag = xml::ReadBool(node);
    } else if (key.real) {
      this->*key.real = xml::ReadReal(node);
    }
  };

  // The table by tag, and the members of each group, built once.
  struct KeyIndex {
    std::unordered_map<std::string_view, const Key*> keys;
    std::unordered_map<std::string_view, std::vector<const Key*>> groups;
  };
  static const KeyIndex index = [] {
    KeyIndex built;
    for (const Key& key : Keys()) {
      if (key.group != nullptr) {
        built.groups[key.group].push_back(&key);
      } else {
        built.keys.emplace(key.tag, &key);
      }
    }
    return built;
  }();

  for (pugi::xml_node child : printer.children()) {
    if (child.type() != pugi::node_element) {
      continue;
    }
    if (xml::IsNamed(child, kSNMP)) {
      m_snmp.ReadXML(child);
    } else if (xml::IsNamed(child, kSNMPDeviceName)) {
      m_snmpDeviceName.ReadXML(child);
    } else if (xml::IsNamed(child, kUSBDeviceName)) {
      m_usbDeviceName.ReadXML(child);
    } else if (xml::IsNamed(child, kGenericDeviceName)) {
      m_genericDeviceName.ReadXML(child);
    } else if (xml::IsNamed(child, kISOLABRef)) {
      m_isoLabRef.ReadXML(child);
    } else if (xml::IsNamed(child, kAbortCommand)) {
      ParseHex(xml::ReadText(child), m_abortCommand);
    } else if (xml::IsNamed(child, kCosting)) {
      // Only sets the flag, and only for this exact text.
      if (xml::ReadText(child) == kLaserCosting) {
        m_costingLaser = true;
      }
    } else if (xml::IsNamed(child, kDashboardKey)) {
      if (xml::ReadText(child) == kResolutionPMI) {
        m_dashboardResolutionPMI = true;
      }
    } else if (xml::IsNamed(child, kPageSizeOffset)) {
      ReadPageSizeOffset(child);
    } else if (auto key = index.keys.find(child.name()); key != index.keys.end()) {
      readKey(*key->second, child);
      if (xml::IsNamed(child, kDataMonitor)) {
        // "External:Name" names a monitor outside the RIP.
        if (m_dataMonitor.find(kExternalPrefix) != std::wstring::npos) {
          m_externalDataMonitor = m_dataMonitor;
          for (size_t at; (at = m_externalDataMonitor.find(kExternalPrefix)) != std::wstring::npos;) {
            m_externalDataMonitor.erase(at, kExternalPrefix.size());
          }
          m_dataMonitor = kExternalMonitor;
        }
      }
    } else if (auto group = index.groups.find(child.name()); group != index.groups.end()) {
      // A group: its children are the keys of that group.
      for (pugi::xml_node item : child.children()) {
        for (const Key* member : group->second) {
          if (xml::IsNamed(item, member->tag)) {
            readKey(*member, item);
            break;
          }
        }
      }
    }
  }
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
