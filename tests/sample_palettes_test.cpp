// The bundled photographs' palettes at every colour count, seeded, pinned
// bit for bit: a change anywhere on the frame path (resize, conversion,
// k-means and its pruning, ranking, boost) moves at least one of them.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/tool_subprocess.h"

namespace {

// FNV-1a over the rows' float bits, members and passes of every picture.
uint64_t paletteHash(const nlohmann::json& pictures) {
  uint64_t hash = 14695981039346656037ull;
  auto mix = [&hash](uint32_t word) {
    for (int i = 0; i < 4; ++i) {
      hash = (hash ^ ((word >> (8 * i)) & 0xff)) * 1099511628211ull;
    }
  };
  for (const auto& picture : pictures) {
    mix(picture.at("passes").get<uint32_t>());
    for (const auto& row : picture.at("colors")) {
      for (const char* field : {"r", "g", "b", "lightness"}) {
        // Printed with 9 significant digits: the float comes back exactly.
        const float value = row.at(field).get<float>();
        uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        mix(bits);
      }
      mix(row.at("members").get<uint32_t>());
    }
  }
  return hash;
}

TEST(SamplePalettes, SeededPalettesOfEveryColourCountAreUnchanged) {
  // Recorded before the assignment step learnt to prune, and unchanged
  // since. The seeds go through glibc's rand().
  const uint64_t expected[20] = {
      0xcd8bc617a8a8628dull, 0x42eda01cb2dad155ull, 0xbd30625bb074844cull,
      0x6b09cedc2b35a86bull, 0xf3c1e64d4e0fdeb0ull, 0x21fa34fec59bc7eeull,
      0x88a8d0a8056f99cfull, 0xbe2074497558c78full, 0xadf0ff800281b818ull,
      0xd411570ec587a427ull, 0x974a54879d6f10deull, 0x748025efc67835a7ull,
      0x078cbea761095a9bull, 0x10dc51520ac6e1aeull, 0x6c294ea461e7c3dcull,
      0x0c2f4e15ecf882c6ull, 0x77f691185116daf9ull, 0xf0f2c0ca7fcae61eull,
      0xb83f2e9820ddb3fbull, 0xfc193901ce131f59ull};
  const std::string samples = PAVONA_SAMPLES_DIR;
  for (int k = 1; k <= 20; ++k) {
    const auto run = pavona::testing::runTool(
        {"--json", "--seed", "7", "-k", std::to_string(k),
         samples + "/astronaut.jpg", samples + "/chelsea.jpg",
         samples + "/coffee.jpg", samples + "/rocket.jpg"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(paletteHash(nlohmann::json::parse(run.out)), expected[k - 1])
        << "k = " << k;
  }
}

}  // namespace
