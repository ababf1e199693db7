// The one export macro. The library is built with hidden visibility, so only
// what carries this attribute (and matches cmake/pavona.map) is exported.
#ifndef PAVONA_API_EXPORT_H_
#define PAVONA_API_EXPORT_H_

#define PAVONA_EXPORT __attribute__((visibility("default")))

#endif  // PAVONA_API_EXPORT_H_
