#pragma once

// Umbrella header: everything tarn offers.

#include "tarn/colour/chart_plot.h"
#include "tarn/colour/delta_e.h"
#include "tarn/colour/it8_chart.h"
#include "tarn/colour/pmc_progress.h"
#include "tarn/foundation/export.h"
#include "tarn/foundation/format.h"
#include "tarn/foundation/format_string.h"
#include "tarn/foundation/paths.h"
#include "tarn/foundation/platform.h"
#include "tarn/foundation/registry.h"
#include "tarn/foundation/tags.h"
#include "tarn/foundation/text.h"
#include "tarn/foundation/xml.h"
#include "tarn/printer/definitions.h"
#include "tarn/printer/generic_map.h"
#include "tarn/printer/printer_data.h"
#include "tarn/printer/resolution_def.h"
#include "tarn/printmode/curve_plot.h"
#include "tarn/printmode/print_mode_data.h"
#include "tarn/version.h"
