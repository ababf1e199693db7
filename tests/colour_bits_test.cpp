// Every bit of RGB2Lab, CIEDE2000 and a palette row (lightness figure and
// saturation boost) against tests/data/colour_bits.txt, written by
// tests/colour_reference.py, an independent float32 computation. The
// inputs reach every branch: greys through the companding threshold and the
// Lab knee, frame colours of both depths, neutral pairs, hues either side
// of the pi discontinuity and exactly on it, and saturations around 0.8.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "src/CIEDE2000.h"
#include "src/KImages.h"

namespace {

float fromBits(const std::string& hex) {
  const uint32_t u = static_cast<uint32_t>(std::stoul(hex, nullptr, 16));
  float f;
  std::memcpy(&f, &u, sizeof f);
  return f;
}

uint32_t bitsOf(float f) {
  uint32_t u;
  std::memcpy(&u, &f, sizeof u);
  return u;
}

IMAGE_FORMAT_TYPE formatOfScale(float scale) {
  return scale == 255    ? IMAGE_FORMAT_NV21
         : scale == 1024 ? IMAGE_FORMAT_YUV420SP_10BIT
                         : IMAGE_FORMAT_RESERVED10;
}

// A palette row: the one centre of a k = 1 selection.
std::vector<float> paletteRow(float scale, const _Point& centre) {
  KImages engine;
  InitParamData init{};
  init.width = init.height = 64;
  EXPECT_EQ(engine.init(&init), 0);
  engine.setParameters(1);
  engine.m_clusters[0] = centre;
  float palette[PAVONA_MAX_COLORS][4] = {};
  engine.colorChosen(palette, formatOfScale(scale));
  return {palette[0], palette[0] + 4};
}

TEST(ColourBits, MatchTheFloat32Reference) {
  std::ifstream table(PAVONA_TEST_DATA_DIR "/colour_bits.txt");
  ASSERT_TRUE(table) << "missing " PAVONA_TEST_DATA_DIR "/colour_bits.txt";
  int rows = 0;
  for (std::string line; std::getline(table, line); ++rows) {
    std::istringstream in(line);
    std::string kind, word;
    std::vector<float> v;
    in >> kind;
    while (in >> word) {
      if (word != "->") v.push_back(fromBits(word));
    }
    std::vector<float> got;
    if (kind == "lab" && v.size() == 6) {
      got.resize(3);
      CIEDE2000::RGB2Lab(v[0], v[1], v[2], got[0], got[1], got[2]);
    } else if (kind == "de" && v.size() == 7) {
      got = {CIEDE2000::CIEDE2000({v[0], v[1], v[2]}, {v[3], v[4], v[5]})};
    } else if (kind == "row" && v.size() == 8) {
      got = paletteRow(v[0], {v[1], v[2], v[3]});
    } else {
      ADD_FAILURE() << "unreadable row: " << line;
      continue;
    }
    const size_t inputs = v.size() - got.size();
    for (size_t c = 0; c < got.size(); ++c) {
      EXPECT_EQ(bitsOf(got[c]), bitsOf(v[inputs + c]))
          << line << " [" << c << "]";
    }
  }
  EXPECT_GT(rows, 1000);
}

}  // namespace
