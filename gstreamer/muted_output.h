// What the module prints, kept from standard output.
#ifndef GSTREAMER_MUTED_OUTPUT_H_
#define GSTREAMER_MUTED_OUTPUT_H_

namespace gstquillcaption {

// While an object of this class lives, descriptor 1 leads nowhere, for the whole process: what
// other threads print in the meantime is lost as well. One at a time, and made after loading, so
// under ModuleLock(). When the system gives no descriptor, nothing is muted.
class MutedOutput {
  public:
    explicit MutedOutput(bool muted);
    MutedOutput(const MutedOutput&) = delete;
    MutedOutput& operator=(const MutedOutput&) = delete;
    ~MutedOutput();

  private:
    int original_ = -1;
};

}  // namespace gstquillcaption

#endif  // GSTREAMER_MUTED_OUTPUT_H_
