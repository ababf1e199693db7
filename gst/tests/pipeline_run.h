// Runs pipelines and harnessed elements and keeps what they post.
#ifndef PAVONA_GST_TESTS_PIPELINE_RUN_H_
#define PAVONA_GST_TESTS_PIPELINE_RUN_H_

#include <gst/gst.h>

#include <memory>
#include <string>
#include <vector>

namespace pavona::gsttest {

struct StructureFree {
  void operator()(GstStructure* s) const { gst_structure_free(s); }
};
using Structure = std::unique_ptr<GstStructure, StructureFree>;

struct BusLog {
  std::vector<Structure> palettes;  // the pavona-palette messages, in order
  std::string error;                // the first error's text, or empty
  int warnings = 0;
};

// Takes what waits on `bus` into `log`; stops at EOS or an error when
// `until_end`, else when the bus is empty.
void readBus(GstBus* bus, BusLog* log, bool until_end);

// Plays `pipeline` (from PLAYING) to EOS or the first error, then NULL.
BusLog playToEnd(GstElement* pipeline);

// gst-launch syntax.
BusLog runPipeline(const std::string& description);

// The serialised `colors` array of a palette message.
std::string colorsOf(const GstStructure* palette);

}  // namespace pavona::gsttest

#endif  // PAVONA_GST_TESTS_PIPELINE_RUN_H_
