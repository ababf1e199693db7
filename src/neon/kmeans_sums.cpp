// A run of equal labels is summed in one register, r, g and b in lanes 0 to
// 2; lane 3 takes the next sample's red into the sum's junk lane. Neighbouring
// samples mostly share a cluster, so four labels are compared at a time and
// an equal block adds its four samples without further tests. The last
// sample is added alone: its 16-byte load would end past the array.
#include "src/neon/kmeans_sums.h"

#include "base/neon_compat.h"

namespace pavona::internal {

namespace {

bool sameLabels(const int* labels, int32x4_t label) {
  return allLanes(vceqq_s32(vld1q_s32(labels), label));
}

float32x4_t addSample(float32x4_t sum, const _Point* sample) {
  return vaddq_f32(sum, vld1q_f32(&sample->r));
}

// A sample on its own, through the sum in memory: where labels change
// within four samples, runs are too short to keep in a register.
void addOne(ListSum& sum, const _Point* sample) {
  vst1q_f32(&sum.r, addSample(vld1q_f32(&sum.r), sample));
  ++sum.count;
}

}  // namespace

void addList(ListSum& sum, const _Point* first, const _Point* last) {
  // Locals, so that the compiler keeps the three chains in registers.
  float r = sum.r;
  float g = sum.g;
  float b = sum.b;
  for (const _Point* sample = first; sample != last; ++sample) {
    r += sample->r;
    g += sample->g;
    b += sample->b;
  }
  sum.r = r;
  sum.g = g;
  sum.b = b;
  sum.count += static_cast<int>(last - first);
}

void addMembers_NEON(const _Point* samples, const int* labels, int count,
                     ListSum* sums) {
  const int loaded = count - 1;
  int j = 0;
  while (j + 4 <= loaded) {
    const int label = labels[j];
    const int32x4_t labelVector = vdupq_n_s32(label);
    if (!sameLabels(labels + j, labelVector)) {
      for (int l = 0; l < 4; ++l) addOne(sums[labels[j + l]], samples + j + l);
      j += 4;
      continue;
    }
    ListSum& sum = sums[label];
    float32x4_t run = vld1q_f32(&sum.r);
    const int first = j;
    do {
      run = addSample(run, samples + j);
      run = addSample(run, samples + j + 1);
      run = addSample(run, samples + j + 2);
      run = addSample(run, samples + j + 3);
      j += 4;
    } while (j + 4 <= loaded && sameLabels(labels + j, labelVector));
    vst1q_f32(&sum.r, run);
    sum.count += j - first;
  }
  for (; j < loaded; ++j) addOne(sums[labels[j]], samples + j);
  if (j < count) addList(sums[labels[j]], samples + j, samples + j + 1);
}

void addMembers_C(const _Point* samples, const int* labels, int count,
                  ListSum* sums) {
  for (int j = 0; j < count; ++j) {
    addList(sums[labels[j]], samples + j, samples + j + 1);
  }
}

}  // namespace pavona::internal
