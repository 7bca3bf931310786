#pragma once

// A printer definition (.pdx): one printer model as the RIP sees it. The file
// is read, never written; the printer is the element "PRINTERLIST/PRINTER":
//
//   <?xml version="1.0"?>
//   <PRINTERLIST>
//   	<PRINTER version="3">
//   		<LONGNAME>Aurora 64</LONGNAME>
//   		<PORTSETUP><TCP>1</TCP><USB>1</USB></PORTSETUP>
//   		<DPIDEFAULT>720 x 720</DPIDEFAULT>
//   		<DATAMONITOR>External:AuroraMonitor</DATAMONITOR>
//   		<DEFAULTPAGE><SIZE>A4</SIZE><ROLLWIDTH>64</ROLLWIDTH></DEFAULTPAGE>
//   		<PAGESIZE_OFFSET left="10" right="15.4"/>
//   		<RES>...</RES>
//   		<NCOLOR2>...</NCOLOR2>
//   		<PAGESIZE>...</PAGESIZE>
//   	</PRINTER>
//   </PRINTERLIST>
//
// Every key, its default and the lists are in docs/formats/printer-definition.md.
// Definitions live in the RIP folder's "System\\printers\\" folder (FindPDXPath).

#include <pugixml.hpp>

#include <cstdint>
#include <span>
#include <string>

#include "tarn/foundation/export.h"
#include "tarn/foundation/platform.h"
#include "tarn/printer/definitions.h"
#include "tarn/printer/generic_map.h"
#include "tarn/printer/resolution_def.h"

namespace tarn {

// --- the named lists of a printer definition --------------------------------

class TARN_API CResolutionMap : public CGenericMap<CResolutionDef> {
 public:
  CResolutionMap() : CGenericMap(L"RES") {}
};

class TARN_API CButtonMap : public CGenericMap<CButtonDef> {
 public:
  CButtonMap() : CGenericMap(L"DMBUTTON") {}
};

class TARN_API CDotProfileMap : public CGenericMap<CDotProfileDef> {
 public:
  CDotProfileMap() : CGenericMap(L"DOTPROFILE") {}
};

class TARN_API CSpotMap : public CGenericMap<CSpotDef> {
 public:
  CSpotMap() : CGenericMap(L"SPOT") {}
};

class TARN_API COptionMap : public CGenericMap<CCustomDef> {
 public:
  COptionMap() : CGenericMap(L"CUSTOM") {}

  // Walks the options in key order and returns the first whose name (byName)
  // or keyword (otherwise) equals name exactly, looking through each option's
  // nested options before going on to the next. Null when none matches.
  CCustomDef* Get(const wchar_t* name, bool byName) const;
  using CGenericMap::Get;
};

class TARN_API CColorMap : public CGenericMap<CColorDef> {
 public:
  CColorMap() : CGenericMap(L"NCOLOR2") {}

  // With bySecondName, the first colour model in key order whose display name
  // equals name ignoring case; otherwise the keyed lookup. Null when none.
  CColorDef* Get(const wchar_t* name, bool bySecondName) const;
  using CGenericMap::Get;
};

class TARN_API CPageMap : public CGenericMap<CPageSizeDef> {
 public:
  CPageMap() : CGenericMap(L"PAGESIZE") {}

  // With byPostScriptName, the first page size in key order whose PostScript
  // name equals name ignoring case; otherwise the keyed lookup. Null when none.
  CPageSizeDef* Get(const wchar_t* name, bool byPostScriptName) const;
  using CGenericMap::Get;

  // Appends every page size's name, in key order, to out (not cleared first).
  template <class List>
  void GetStringList(List& out) const {
    for (const auto& entry : m_map) {
      if (!entry.second) {
        return;
      }
      out.push_back(entry.second->GetName());
    }
  }

  // True when width x height (inches) equals some page's full size to a
  // thousandth, or is strictly larger than some page's full size both ways.
  // Equal one way and larger the other is not enough: callers depend on that.
  // False for an empty map.
  bool IsPageSupported(double width, double height) const;
};

// --- the scalar settings -----------------------------------------------------

class TARN_API CPrinterBase {
 public:
  // Limits on media the host application allows; 0 means no limit. A roll
  // width beyond the width limit is cut to it when a definition is read.
  static int nMediaWidthLimit;
  static int nMediaHeightLimit;

  CPrinterBase();
  virtual ~CPrinterBase() = default;
  CPrinterBase(const CPrinterBase&) = default;
  CPrinterBase& operator=(const CPrinterBase&) = default;

  // Every key to its default, as after construction.
  void SetDefaults();

  // Reads the keys of a "PRINTER" element in document order (the later of two
  // equal keys wins). Unless keepCurrent, the defaults are restored first; with
  // it, the element is read over the current values (a site's override over the
  // shipped definition). Unknown keys are skipped; false only for a null node.
  bool ReadXML(const pugi::xml_node& printer, bool keepCurrent = false);

  // Decodes hexadecimal text into bytes: pairs of digits, optionally split by
  // blanks, commas or semicolons, each group optionally prefixed "0x"
  // ("1B 40", "1b40", "0x1B,0x40"). A group of one digit is one byte. False,
  // with out emptied, for any other character or an odd-length group.
  static bool ParseHex(const std::wstring& text, std::string& out);

  void SetVersion(unsigned long version) { m_version = version; }
  unsigned long GetVersion() const { return m_version; }
  void SetDeviceType(unsigned int type) { m_deviceType = type; }
  unsigned int GetDeviceType() const { return m_deviceType; }
  bool HasCustomPrinterStatus() const { return !m_customPrinterStatus.empty(); }

  // --- names and ports ---
  const std::wstring& GetLongName() const { return m_longName; }
  const std::wstring& GetShortName() const { return m_shortName; }
  const std::wstring& GetPort() const { return m_port; }
  bool HasTCPPort() const { return m_portTCP; }
  bool HasUSBPort() const { return m_portUSB; }
  bool HasLPTPort() const { return m_portLPT; }
  bool HasCOMPort() const { return m_portCOM; }
  const std::wstring& GetTCPPort() const { return m_tcpPort; }
  int GetSecondaryPortType() const { return m_secondaryPortType; }
  const std::wstring& GetSpecial() const { return m_special; }
  const std::wstring& GetMultiImage() const { return m_multiImage; }
  const std::wstring& GetDeviceID() const { return m_deviceId; }
  const std::wstring& GetPrinterSeries() const { return m_printerSeries; }
  const std::wstring& GetCustomPrinterStatus() const { return m_customPrinterStatus; }
  const CSNMPData& GetSNMPData() const { return m_snmp; }
  const CSNMPName& GetSNMPDeviceName() const { return m_snmpDeviceName; }
  const CSNMPName& GetUSBDeviceName() const { return m_usbDeviceName; }
  const CSNMPName& GetGenericDeviceName() const { return m_genericDeviceName; }
  const CISOLABRef& GetISOLABRef() const { return m_isoLabRef; }
  bool GetExposeInstalledQueues() const { return m_exposeInstalledQueues; }

  // --- defaults and helpers ---
  const std::wstring& GetDpiDefault() const { return m_dpiDefault; }
  const std::wstring& GetColorDefault() const { return m_colorDefault; }
  // "External" when the file named an external data monitor; see GetExternalDataMonitor.
  const std::wstring& GetDataMonitor() const { return m_dataMonitor; }
  const std::wstring& GetExternalDataMonitor() const { return m_externalDataMonitor; }
  const std::wstring& GetDFormatDriver() const { return m_dFormatDriver; }
  const std::wstring& GetCutterIni() const { return m_cutterIni; }
  const std::wstring& GetDefStrat() const { return m_defStrat; }
  const std::wstring& GetBreviaPalette() const { return m_breviaPalette; }
  const std::wstring& GetHalftonePalette() const { return m_halftonePalette; }
  const std::wstring& GetPMCType() const { return m_pmcType; }
  // The abort command's bytes; empty when none or when "ABORTCMD" was not valid hex.
  const std::string& GetAbortCommand() const { return m_abortCommand; }
  bool IsCostingLaser() const { return m_costingLaser; }
  bool IsDashboardResolutionPMI() const { return m_dashboardResolutionPMI; }

  // --- device ---
  int GetBits() const { return m_bits; }
  int GetTimeoutI() const { return m_timeoutI; }
  int GetTimeoutR() const { return m_timeoutR; }
  int GetTimeoutS() const { return m_timeoutS; }
  int GetScanLimit() const { return m_scanLimit; }
  int GetFrameDiff() const { return m_frameDiff; }
  int GetDevFrame() const { return m_devFrame; }
  int GetDevScan() const { return m_devScan; }
  int GetDevAuto() const { return m_devAuto; }
  bool IsSinglePass() const { return m_singlePass; }
  bool IsCutDevice() const { return m_cutDevice; }
  bool IsSpotDevice() const { return m_spotDevice; }
  int GetHalftone() const { return m_halftone; }
  bool GetAllow8BitHalftone() const { return m_allow8BitHalftone; }
  int GetConcurrentPlanes() const { return m_concurrentPlanes; }
  bool GetShowResolutions() const { return m_showResolutions; }
  bool GetShowColors() const { return m_showColors; }
  bool GetRewind() const { return m_rewind; }
  bool IsMultiHitFoil() const { return m_multiHitFoil; }
  bool GetStripBlankPlanes() const { return m_stripBlankPlanes; }
  bool GetFoilInfo() const { return m_foilInfo; }
  bool IsLayerDevice() const { return m_layerDevice; }
  bool GetConcurrentPrime() const { return m_concurrentPrime; }
  bool GetDynamicPlanes() const { return m_dynamicPlanes; }
  bool GetMultiplePrime() const { return m_multiplePrime; }
  // The printer is a laser engraver or cutter: its print modes carry laser settings.
  bool IsLaserDevice() const { return m_laserDevice; }
  int GetByteAlignment() const { return m_byteAlignment; }
  bool IsWindowsPrimeDevice() const { return m_windowsPrimeDevice; }
  bool IsRightSideOrigin() const { return m_rightSideOrigin; }
  bool GetColorClear() const { return m_colorClear; }
  bool GetPDFOutput() const { return m_pdfOutput; }
  bool GetSetInkOrder() const { return m_setInkOrder; }
  const std::wstring& GetInkReorderSlotDisplay() const { return m_slotDisplay; }
  const std::wstring& GetInkReorderColorMap() const { return m_inkReorderColorMap; }
  bool GetPageVMirror() const { return m_pageVMirror; }
  bool GetLayerSeparatedPreview() const { return m_layerSeparatedPreview; }
  bool GetDuplex() const { return m_duplex; }
  bool GetPCDecalMode() const { return m_pcDecalMode; }
  bool GetNoQCopies() const { return m_noQCopies; }
  int GetEmbeddedPreviewFormat() const { return m_embeddedPreviewFormat; }

  // --- page ---
  const std::wstring& GetDefaultPageSize() const { return m_defaultPageSize; }
  bool GetDefaultRollMode() const { return m_rollMode; }
  double GetDefaultRollWidth() const { return m_rollWidth; }
  bool GetDefaultPortrait() const { return m_portrait; }
  bool GetStretchPageSize() const { return m_stretchPageSize; }
  double GetHStretch() const { return m_hStretch; }
  double GetVStretch() const { return m_vStretch; }
  // Page offset in inches, and whether the file gave one.
  bool HasPageOffset() const { return m_pageOffsetGiven; }
  double GetPageOffsetX() const { return m_pageOffsetX; }
  double GetPageOffsetY() const { return m_pageOffsetY; }

  // --- GDI printers ---
  bool GetGDIAllowCustomPage() const { return m_gdiAllowCustomPage; }
  const std::wstring& GetGDIOriginalName() const { return m_gdiOriginalName; }
  double GetGDINonPrintableX() const { return m_gdiNonPrintableX; }
  double GetGDINonPrintableY() const { return m_gdiNonPrintableY; }
  // Asks the host for the current paper of the Windows printer named by
  // "GDIORIGINALNAME" (tenths of a millimetre). False when the paper size code
  // is 0; false with paper emptied and zeroed when the name is empty, no query
  // is set or the query fails.
  bool QueryGDIPaper(PrinterPaper& paper) const;

  // --- drop volumes ---
  // Nominal small, medium and large drop volumes in picolitres (5.9, 12.7 and
  // 20.9 unless the host sets others); files do not carry them.
  double GetSmallDropVolume() const { return m_smallDropVolume; }
  double GetMediumDropVolume() const { return m_mediumDropVolume; }
  double GetLargeDropVolume() const { return m_largeDropVolume; }
  void SetDropVolumes(double small, double medium, double large) {
    m_smallDropVolume = small;
    m_mediumDropVolume = medium;
    m_largeDropVolume = large;
  }

 private:
  struct Fields;  // the key table, in the source file
  void ReadPageSizeOffset(const pugi::xml_node& node);

  unsigned long m_version = 0;
  unsigned int m_deviceType = 0;

  std::wstring m_longName;
  std::wstring m_shortName;
  std::wstring m_port;
  bool m_portTCP = true;
  bool m_portUSB = true;
  bool m_portLPT = false;
  bool m_portCOM = false;
  std::wstring m_special;
  CSNMPData m_snmp;
  std::wstring m_multiImage;
  std::wstring m_dpiDefault;
  std::wstring m_colorDefault;
  std::wstring m_deviceId;
  std::wstring m_dataMonitor;
  std::wstring m_externalDataMonitor;
  std::wstring m_dFormatDriver;
  std::wstring m_cutterIni;
  std::wstring m_defStrat;
  std::wstring m_breviaPalette;
  int m_bits = 0;
  int m_timeoutI = 0;
  int m_timeoutR = 0;
  int m_timeoutS = 0;
  int m_scanLimit = 0;
  int m_frameDiff = 0;
  int m_devFrame = 0;
  int m_devScan = 0;
  int m_devAuto = 0;
  bool m_singlePass = false;
  bool m_cutDevice = false;
  bool m_spotDevice = false;
  int m_halftone = 0;
  std::wstring m_halftonePalette;
  bool m_allow8BitHalftone = false;
  int m_concurrentPlanes = 0;
  bool m_showResolutions = true;
  bool m_showColors = true;
  bool m_rewind = true;
  bool m_multiHitFoil = false;
  bool m_stripBlankPlanes = false;
  bool m_foilInfo = false;
  bool m_layerDevice = false;
  bool m_concurrentPrime = false;
  bool m_dynamicPlanes = false;
  bool m_multiplePrime = false;
  bool m_laserDevice = false;
  int m_byteAlignment = 0;
  bool m_windowsPrimeDevice = false;
  bool m_rightSideOrigin = false;
  bool m_colorClear = false;
  bool m_pdfOutput = false;
  bool m_setInkOrder = false;
  std::wstring m_slotDisplay;
  std::wstring m_inkReorderColorMap;
  bool m_pageVMirror = false;
  int m_secondaryPortType = 0;
  bool m_layerSeparatedPreview = false;
  std::wstring m_tcpPort = L"9100";
  bool m_duplex = false;
  std::string m_abortCommand;
  std::wstring m_pmcType;
  std::wstring m_defaultPageSize;
  bool m_rollMode = false;
  double m_rollWidth = 0.0;
  bool m_portrait = false;
  bool m_stretchPageSize = false;
  double m_hStretch = 0.0;
  double m_vStretch = 0.0;
  bool m_pcDecalMode = true;
  bool m_noQCopies = false;
  int m_embeddedPreviewFormat = 0;
  std::wstring m_printerSeries;
  CSNMPName m_snmpDeviceName;
  CSNMPName m_usbDeviceName;
  CSNMPName m_genericDeviceName;
  CISOLABRef m_isoLabRef;
  bool m_costingLaser = false;
  bool m_gdiAllowCustomPage = false;
  std::wstring m_gdiOriginalName;
  double m_gdiNonPrintableX = 0.0;
  double m_gdiNonPrintableY = 0.0;
  bool m_dashboardResolutionPMI = false;
  bool m_exposeInstalledQueues = false;
  std::wstring m_customPrinterStatus;
  bool m_pageOffsetGiven = false;
  double m_pageOffsetX = 0.0;
  double m_pageOffsetY = 0.0;
  double m_smallDropVolume = 5.9;
  double m_mediumDropVolume = 12.7;
  double m_largeDropVolume = 20.9;
};

// --- the printer definition --------------------------------------------------

class TARN_API CPrinterData : public CPrinterBase {
 public:
  CPrinterData() = default;
  ~CPrinterData() override = default;
  // Deep copies; assignment replaces every list (it does not merge).
  CPrinterData(const CPrinterData& other);
  CPrinterData& operator=(const CPrinterData& other);

  // The file of the definition named driver (with or without ".pdx"): the RIP
  // folder's "System\\printers\\<driver>.pdx", else the first file of that name
  // (ignoring case) in a sub-folder of it. False, path emptied, when none exists
  // or driver is empty or holds a path separator.
  static bool FindPDXPath(const std::wstring& driver, std::wstring& path);

  // Loads the definition named driver (see FindPDXPath). False, the record
  // reset to its defaults, when there is no such file or it cannot be read.
  bool LoadPrinter(const std::wstring& driver);
  // Loads the definition file at path. False, the record reset to its
  // defaults, when the file cannot be read, is not XML, or lacks
  // "PRINTERLIST/PRINTER".
  bool LoadFile(const std::wstring& path);
  // The same for a document in memory (UTF-8).
  bool LoadFromString(std::string_view utf8);
  // Reads the "PRINTER" element: its keys and every list. False only for a null node.
  bool ReadXML(const pugi::xml_node& printer, bool keepCurrent = false);

  // The definition's name as print modes give it in "DRIVER": the file name
  // without ".pdx" when loaded through LoadPrinter or LoadFile; else empty.
  const std::wstring& GetDriverName() const { return m_driverName; }
  void SetDriverName(const std::wstring& name) { m_driverName = name; }
  // True after a successful load.
  bool IsLoaded() const { return m_loaded; }
  // True when the file gave an ink list.
  bool HasInkList() const { return m_hasInkList; }

  // True when some resolution is an FM resolution (screening kind 1).
  bool HasAnyFMResolution() const;
  // An HTM printer: its "PMCTYPE" contains "HTM" and some printer option
  // definition (or an option nested in one) carries the htm flag.
  bool IsHTMPrinter() const;

  // The resolution of that label / colour model of that name (ignoring case), or null.
  CResolutionDef* GetResolution(const std::wstring& label) const { return m_resolutions.Get(label.c_str()); }
  CColorDef* GetColorModel(const std::wstring& name) const { return m_colors.Get(name.c_str()); }

  CButtonMap& GetButtons() { return m_buttons; }
  const CButtonMap& GetButtons() const { return m_buttons; }
  CResolutionMap& GetResolutions() { return m_resolutions; }
  const CResolutionMap& GetResolutions() const { return m_resolutions; }
  CColorMap& GetColors() { return m_colors; }
  const CColorMap& GetColors() const { return m_colors; }
  COptionMap& GetOptions() { return m_options; }
  const COptionMap& GetOptions() const { return m_options; }
  CPageMap& GetPages() { return m_pages; }
  const CPageMap& GetPages() const { return m_pages; }
  CSpotMap& GetSpots() { return m_spots; }
  const CSpotMap& GetSpots() const { return m_spots; }
  CDotProfileMap& GetDotProfiles() { return m_dotProfiles; }
  const CDotProfileMap& GetDotProfiles() const { return m_dotProfiles; }
  const CInkList& GetInkList() const { return m_inkList; }

 private:
  void Reset();
  bool ReadDocument(const pugi::xml_document& document);

  CButtonMap m_buttons;
  CResolutionMap m_resolutions;
  CColorMap m_colors;
  COptionMap m_options;
  CPageMap m_pages;
  CSpotMap m_spots;
  CDotProfileMap m_dotProfiles;
  CInkList m_inkList;
  bool m_loaded = false;
  bool m_hasInkList = false;
  std::wstring m_driverName;
};

}  // namespace tarn
