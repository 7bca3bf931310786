#pragma once

// CPostscriptSetup: the PostScript set-up that the RIP runs before a job,
// written from a print mode and its printer definition. Every line ends in
// CR LF; each block opens with "% -- Name --" and closes with
// "% -- End Name --". The start of a set-up (tables shortened):
//
//   % -- Printer Selection --
//
//   (%StartUp%) currentdevparams (Aurora 64) statusdict begin _selectprinter end
//
//   % -- End Printer Selection --
//
//   % -- Level Transfer Curves --
//
//   userdict begin
//
//   /settransfer {systemdict /currentcolortransfer get exec pop 4 -1 roll systemdict /setcolortransfer get
//   exec} def
//
//   /graytransfertable <
//   0001020304050607...              (32 values a line, eight lines)
//   > def
//   /redtransfertable <
//   ...
//   end
//
//   % -- End Level Transfer Curvers --
//
// followed by the separation tables, the N-colour procedures, the halftone
// screens, the printer options and the trailer text. docs/formats/
// postscript-setup.md describes every block and when it is written.
//
// The text is built in one growable buffer owned by the emitter and handed
// out once, as the 8-bit text the RIP reads. Output is deterministic: the
// same print mode and printer give the same bytes.

#include <string>

#include "tarn/foundation/export.h"
#include "tarn/foundation/format_string.h"

namespace tarn {

class CPMCurveData;
class CPrintModeData;
class CPrinterData;

class TARN_API CPostscriptSetup {
 public:
  // Writes the set-up of mode. The emitter keeps a reference: mode must
  // outlive it. Only WritePostscriptSection changes mode (its trailer text).
  explicit CPostscriptSetup(CPrintModeData& mode);

  // The whole set-up: printer selection, level transfer curves, separation
  // curves, N-colour procedures, halftone screens, printer options and the
  // trailer text. The first form loads the printer definition named by the
  // print mode's driver; one that fails to load counts as an empty printer.
  // A trailer text without "Kestrel" becomes "KestrelA4" in the print mode.
  void WritePostscriptSection();
  void WritePostscriptSection(const CPrinterData& printer);

  // --- the blocks of the set-up; each appends one block to the text ---------
  // The writers that take a printer write nothing when it is null.
  void WritePrinterSelect();
  void WriteLevelTransferCurves();
  void WriteSeparationCurves(const CPrinterData* printer);
  void WriteNColor(const CPrinterData* printer);
  void WriteHalftone(const CPrinterData* printer);
  void WritePrinterOptions(const CPrinterData* printer);

  // --- further blocks, not part of the set-up above --------------------------
  // Each writes nothing when its setting is at its neutral value (see the
  // format notes); the writers that take a printer also when it is null.
  void WriteSaturation();
  // Ink limits into buffer: the total limit, with images true the image
  // limit, and with table true an "/InkLimit" table of size values.
  void WriteMaxInk(formatstringT& buffer, unsigned size, bool images, bool table) const;
  void WriteMirror();
  void WriteInvert();
  void WriteICC(const CPrinterData* printer);
  void WriteImageSampling();
  void WriteSharpenBlur();
  void WriteFencePoints();
  // Appends the 256-value dot-size domain table (small below low, medium
  // below high, large from high on) as hex digits, 32 values a line, LF ends.
  static void FencePointArray(formatstringT& text, int low, int high);

  // --- text builders: return text without writing it ---------------------------
  // The 256 values of one level table (plane index 1..6; 4 is gray); empty
  // when the plane has no curve or its curve cannot be evaluated.
  std::wstring WriteLevelCurve(unsigned planeIndex) const;
  // The curve's PDF point list (CPMCurveData::GetPDFPrefix); empty without a curve.
  std::wstring WritePDFLevelCurve(unsigned planeIndex) const;
  // One separation table "/<name>separation < ... > def"; the values are
  // empty for a null curve or one that cannot be evaluated.
  std::wstring WriteSepCurve(const CPMCurveData* curve, const std::wstring& planeName) const;
  // One separation table per plane of the print mode's colour model.
  std::wstring WriteSepChannels(const CPrinterData& printer) const;
  // The ClippingTProcs line of one plane.
  std::wstring WriteTClipProc(const std::wstring& planeName, const CPrinterData& printer) const;
  // The PDF point lists of the six level curves, one line each
  // ("gray: 0.0000, 0.0000, ..."), inverted outputs when inverted is true.
  void WritePDFLevelTransferCurves(bool inverted, std::wstring& text) const;

  // The name under which a plane's separation table is defined: the plane
  // name lower-cased, "black" becoming "gray", without the characters that
  // cannot stand in a PostScript name ("Light Cyan" -> "lightcyan").
  static std::wstring SeparationTableName(const std::wstring& planeName);

  // The text written so far, and the same as the 8-bit bytes the RIP reads
  // (characters beyond Latin-1 become '?').
  const std::wstring& GetText() const { return text_.str(); }
  std::string GetBytes() const;
  // Starts a new text.
  void Clear() { text_.clear(); }

 private:
  // The curve of a level table: plane 0 for every plane when one curve serves all.
  const CPMCurveData* LevelCurve(unsigned planeIndex) const;
  // True when the plane gets a separation table from WriteSepChannels.
  bool HasSeparationTable(const std::wstring& planeName, const CPrinterData& printer) const;

  CPrintModeData& mode_;
  formatstringT text_;
};

}  // namespace tarn
