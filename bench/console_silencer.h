// Sends this process's standard output and error to /dev/null while alive,
// so that what the library prints per frame stays out of the benchmark's
// own report.
#ifndef PAVONA_BENCH_CONSOLE_SILENCER_H_
#define PAVONA_BENCH_CONSOLE_SILENCER_H_

namespace bench {

class ConsoleSilencer {
 public:
  ConsoleSilencer();
  ~ConsoleSilencer();
  ConsoleSilencer(const ConsoleSilencer&) = delete;
  ConsoleSilencer& operator=(const ConsoleSilencer&) = delete;

 private:
  int savedOut_;
  int savedErr_;
};

}  // namespace bench

#endif  // PAVONA_BENCH_CONSOLE_SILENCER_H_
