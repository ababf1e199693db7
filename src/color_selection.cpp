#include <algorithm>
#include <functional>
#include <map>
#include <vector>

#include "src/CIEDE2000.h"
#include "src/KImages.h"

namespace {

// Channels reach RGB2Lab normalised by this. 10-bit frames use 1024, not
// 1023, so that no channel quite reaches 1.
float sampleScale(IMAGE_FORMAT_TYPE format) {
  switch (format) {
    case IMAGE_FORMAT_NV21:
    case IMAGE_FORMAT_NV12:
      return 255.0f;
    case IMAGE_FORMAT_YUV420SP_10BIT:
      return 1024.0f;
    default:
      return 1.0f;
  }
}

CIEDE2000::LAB toLab(const _Point& centre, float scale) {
  CIEDE2000::LAB lab;
  CIEDE2000::RGB2Lab(centre.r / scale, centre.g / scale, centre.b / scale,
                     lab.l, lab.a, lab.b);
  return lab;
}

float minOf(const float* rgb) {
  return std::min(std::min(rgb[0], rgb[1]), rgb[2]);
}
float maxOf(const float* rgb) {
  return std::max(std::max(rgb[0], rgb[1]), rgb[2]);
}

// Raises the HSL saturation by a quarter (to full from 0.8 up), keeping
// lightness and hue. Greys are left alone.
void boostSaturation(float* row, float scale) {
  const float mx = maxOf(row);
  const float mn = minOf(row);
  const float d = (mx - mn) / scale;
  if (d == 0.0f) {
    return;
  }
  const float t = (mx + mn) / scale;
  const float l = t * 0.5f;
  const float sat = l < 0.5f ? d / t : d / (2.0f - t);
  const float mid = scale * l;
  const float factor = sat + 0.2f < 1.0f ? 0.25f : 1.0f / sat - 1.0f;
  for (int c = 0; c < 3; ++c) {
    row[c] = row[c] + (row[c] - mid) * factor;
  }
}

}  // namespace

void KImages::colorChosen(float (*palette)[4], IMAGE_FORMAT_TYPE format) {
  const int k = m_colorNum;
  const float scale = sampleScale(format);

  // Each centre is converted once: a conversion depends on nothing but
  // its centre. j runs upward so the float additions keep their order.
  struct Ranked {
    float distinctness = 0.0f;
    CIEDE2000::LAB lab;
  };
  std::vector<Ranked> centres(k);
  for (int i = 0; i < k; ++i) centres[i].lab = toLab(m_clusters[i], scale);
  for (int i = 0; i < k; ++i) {
    for (int j = 0; j < k; ++j) {
      centres[i].distinctness +=
          CIEDE2000::CIEDE2000(centres[i].lab, centres[j].lab);
    }
  }

  // Equal distinctness keeps only the lowest-numbered cluster; the palette
  // then has fewer than k written rows, by design.
  std::map<float, int, std::greater<float>> ranking;
  for (int i = 0; i < k; ++i) {
    ranking.emplace(centres[i].distinctness, i);
  }

  int n = 0;
  for (const auto& entry : ranking) {
    if (n == k) {
      break;
    }
    const _Point& centre = m_clusters[entry.second];
    float* row = palette[n];
    row[0] = centre.r;
    row[1] = centre.g;
    row[2] = centre.b;
    row[3] = ((minOf(row) + maxOf(row)) * 10.0f) / 51.0f;
    m_lastFrame.cluster[n] = entry.second;
    ++n;
  }
  m_lastFrame.rows = n;

  for (int row = 0; row < k; ++row) {
    boostSaturation(palette[row], scale);
  }
}
