// Handles share nothing but the log switch and the process's rand(): several
// handles driven from several threads at once must give exactly the palettes
// that one thread gives. Colour counts 4 and 8 have fixed seeding, so no
// rand() call makes the runs differ. Built under ThreadSanitizer by the tsan
// preset, which must stay quiet.
#include <gtest/gtest.h>

#include <cstring>
#include <future>
#include <thread>
#include <vector>

#include "api/pavona_host.h"
#include "tests/support/capture.h"
#include "tests/support/frames.h"
#include "tests/support/host_records.h"

namespace {

using pavona::testing::captureOutput;
using pavona::testing::Frame;
using pavona::testing::linkedTable;
using pavona::testing::makeFrame10;
using pavona::testing::makeFrame8;

constexpr int kFramesPerHandle = 200;
constexpr int kScenes = 6;

// One handle's work: its init record and the scenes its frames cycle
// through, each frame with its own colour count and preview flag.
struct Job {
  InitParamData init{};
  std::vector<Frame> scenes;
};

Job makeJob(IMAGE_FORMAT_TYPE format, int width, int height, int firstSeed) {
  Job job;
  job.init.width = width;
  job.init.height = height;
  job.init.format = format;
  for (int s = 0; s < kScenes; ++s) {
    job.scenes.push_back(
        format == IMAGE_FORMAT_YUV420SP_10BIT
            ? makeFrame10(width, height, firstSeed + s)
            : makeFrame8(format, width, height, firstSeed + s));
  }
  return job;
}

// Runs a job's frames on one handle.
std::vector<ProcessParamData> run(Job& job) {
  void* handle = nullptr;
  linkedTable().algoInitHandle(&handle, &job.init);
  std::vector<ProcessParamData> palettes(kFramesPerHandle);
  for (int f = 0; f < kFramesPerHandle; ++f) {
    ProcessParamData& param = palettes[f];
    std::memset(&param, 0, sizeof param);
    param.colorNum = f % 2 == 0 ? 4 : 8;
    param.showPalette = f % 3 == 0;
    Frame& frame = job.scenes[f % kScenes];
    linkedTable().singleProcessImage(handle, &frame.image, &param, nullptr);
  }
  linkedTable().releaseHandle(handle, nullptr);
  return palettes;
}

TEST(Threads, HandlesOnSeveralThreadsGiveTheSingleThreadedPalettes) {
  std::vector<Job> jobs;
  jobs.push_back(makeJob(IMAGE_FORMAT_NV21, 640, 480, 1));
  jobs.push_back(makeJob(IMAGE_FORMAT_NV12, 800, 600, 11));
  jobs.push_back(makeJob(IMAGE_FORMAT_YUV420SP_10BIT, 640, 480, 21));
  jobs.push_back(makeJob(IMAGE_FORMAT_NV21, 1280, 720, 31));

  std::vector<std::vector<ProcessParamData>> alone;
  std::vector<std::vector<ProcessParamData>> together(jobs.size());
  captureOutput([&] {
    for (Job& job : jobs) alone.push_back(run(job));
    // Threads wait until all exist, so that their frames interleave.
    std::promise<void> go;
    const std::shared_future<void> start = go.get_future().share();
    std::vector<std::thread> threads;
    for (size_t j = 0; j < jobs.size(); ++j) {
      threads.emplace_back([&, j] {
        start.wait();
        together[j] = run(jobs[j]);
      });
    }
    go.set_value();
    for (std::thread& thread : threads) thread.join();
  });

  for (size_t j = 0; j < jobs.size(); ++j) {
    int written = 0;
    for (int f = 0; f < kFramesPerHandle; ++f) {
      const ProcessParamData& a = alone[j][f];
      const ProcessParamData& b = together[j][f];
      ASSERT_EQ(std::memcmp(a.palette, b.palette, sizeof a.palette), 0)
          << "handle " << j << ", frame " << f;
      written += a.palette[0][0] != 0.0f || a.palette[0][3] != 0.0f;
    }
    EXPECT_EQ(written, kFramesPerHandle)
        << "every frame of handle " << j << " wrote its palette";
  }
}

}  // namespace
