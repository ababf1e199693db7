// The one export macro. The library is built with hidden visibility, so only
// what carries this attribute (and matches cmake/pavona.map) is exported.
#ifndef PAVONA_BASE_EXPORT_H_
#define PAVONA_BASE_EXPORT_H_

#define PAVONA_EXPORT __attribute__((visibility("default")))
// For members of exported classes that are not part of the interface, such
// as the scalar twins kept for tests.
#define PAVONA_HIDDEN __attribute__((visibility("hidden")))

#endif  // PAVONA_BASE_EXPORT_H_
