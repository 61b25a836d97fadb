#include "tools/host/file_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "tools/console/descriptor.h"
#include "tools/console/failure.h"

namespace quill::host {
namespace {

[[noreturn]] void FailToWrite(const std::string& path, int error_number) {
    throw console::Failure(console::kExitUsage, path + ": " + console::ErrorText(error_number));
}

// What the path leads to, through all symbolic links; the path itself when nothing is there yet.
std::string TargetOf(const std::string& path) {
    char* const real = realpath(path.c_str(), nullptr);
    std::string target = real != nullptr ? real : path;
    std::free(real);
    return target;
}

void WriteAll(const console::Descriptor& file, const std::string& path, std::string_view bytes) {
    if (!file.valid() || console::WriteFully(file.get(), bytes) < bytes.size()) {
        FailToWrite(path, errno);
    }
}

// A new file beside the target, gone again unless it takes its place.
class NewFile {
  public:
    explicit NewFile(const std::string& target)
        : target_(target),
          path_(target + ".quill-XXXXXX"),
          file_(mkostemp(path_.data(), O_CLOEXEC)) {
        if (!file_.valid()) {
            path_.clear();
            FailToWrite(target, errno);
        }
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile() {
        if (!path_.empty()) {
            unlink(path_.c_str());
        }
    }

    void Write(std::string_view bytes, mode_t mode, const std::optional<struct stat>& owner) {
        WriteAll(file_, target_, bytes);
        // Only the superuser can give a file away; anybody else's stays his own.
        if (owner && fchown(file_.get(), owner->st_uid, owner->st_gid) != 0 && errno != EPERM) {
            FailToWrite(target_, errno);
        }
        if (fchmod(file_.get(), mode) != 0 || fsync(file_.get()) != 0) {
            FailToWrite(target_, errno);
        }
    }

    void TakePlace() {
        if (std::rename(path_.c_str(), target_.c_str()) != 0) {
            FailToWrite(target_, errno);
        }
        path_.clear();
    }

  private:
    const std::string& target_;
    std::string path_;
    console::Descriptor file_;
};

// So that the new name outlives a loss of power as well. What cannot be synchronised is not ours.
void SynchroniseFolder(const std::string& target) {
    const std::size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : target.substr(0, slash + 1);
    const console::Descriptor descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (descriptor.valid()) {
        fsync(descriptor.get());
    }
}

mode_t ModeOfNewFiles() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

}  // namespace

void WriteWhole(const std::string& path, std::string_view bytes) {
    const std::string target = TargetOf(path);
    struct stat status = {};
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        WriteAll(console::Descriptor(open(target.c_str(), O_WRONLY | O_CLOEXEC)), path, bytes);
        return;
    }
    NewFile file(target);
    constexpr mode_t kPermissions = 07777;
    file.Write(bytes, exists ? status.st_mode & kPermissions : ModeOfNewFiles(),
               exists ? std::optional(status) : std::nullopt);
    file.TakePlace();
    SynchroniseFolder(target);
}

}  // namespace quill::host
