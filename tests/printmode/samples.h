#pragma once

// Print modes in which sections differ from their defaults in every field the
// file keeps, for the round-trip tests. Each fills its own sections only, so
// they can be combined; applied in the order curves, screens, options, the
// printer options decide the colour mode, as loading does.

#include <filesystem>

#include "tarn/printmode/print_mode_data.h"

namespace tarn::test {

// Transfer curves and separations (and the "Color Plane" option they follow).
void FillCurveSections(CPrintModeData& mode);
// Halftones, max ink, image adjustment and fence points.
void FillScreenSections(CPrintModeData& mode);
// ICC profiles and printer options. Override flags stay off: loading clears them.
void FillOptionSections(CPrintModeData& mode);

// Puts the sample printers of examples/rip and the fixture printers of
// tests/data/postscript/printers into rip's System/printers folder.
void InstallTestPrinters(const std::filesystem::path& rip);

}  // namespace tarn::test
