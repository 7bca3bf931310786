// Any bytes as a queue edit file or a job parameter file: reading must never
// crash or leak, and whatever was read must write the same text again after
// going through either file.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tarn/queue/queue_edit.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  tarn::CQueueEdit job;
  if (job.LoadFromString(text)) {
    tarn::CQueueEdit again;
    if (!again.LoadFromString(job.SaveToString()) || again.SaveToString() != job.SaveToString()) {
      std::abort();
    }
  } else if (!job.ReadParameters(text)) {
    return 0;
  }
  // The parameter file carries every text, so it always reads back whole.
  const std::string parameters = job.WriteParameters();
  tarn::CQueueEdit read;
  if (!read.ReadParameters(parameters) || read.WriteParameters() != parameters) {
    std::abort();
  }
  return 0;
}
