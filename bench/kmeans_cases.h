// The k-means cases: the 11,408 points of a 4000 x 3000 frame's working
// size, clustered whole and for one pass, for three cluster counts.
#ifndef PAVONA_BENCH_KMEANS_CASES_H_
#define PAVONA_BENCH_KMEANS_CASES_H_

#include <string>

namespace bench {

constexpr int kKMeansCounts[] = {3, 8, 20};

// The threshold the palette engine clusters with.
constexpr float kKMeansThreshold = 0.001f;

// "kmeans/124x92_k<k>/<implementation>": the whole clustering.
std::string kmeansName(int k, const char* implementation);
// "kmeans_pass/124x92_k<k>/<implementation>": the shortest run, one pass
// of ours (two are the least the peer runs).
std::string kmeansPassName(int k, const char* implementation);

}  // namespace bench

#endif  // PAVONA_BENCH_KMEANS_CASES_H_
