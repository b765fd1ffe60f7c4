#pragma once
// Where the readers take their bytes from: a file, read in large blocks
// through one handle that closes on every way out, or bytes in memory.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace kestrum {

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  // Reads up to count bytes; fewer only at the end or on a failure.
  virtual std::size_t Read(std::uint8_t* dst, std::size_t count) = 0;
  // Passes over count bytes; false on a failure.
  virtual bool Skip(std::uint64_t count) = 0;
  // Back to the first byte; false on a failure.
  virtual bool Rewind() = 0;
  // The system's words for the first failure, empty while there was none.
  const std::string& Failure() const { return failure_; }
  bool Failed() const { return !failure_.empty(); }

 protected:
  void Fail(std::string reason) {
    if (failure_.empty()) failure_ = std::move(reason);
  }

 private:
  std::string failure_;
};

class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::string_view bytes) : bytes_(bytes) {}
  std::size_t Read(std::uint8_t* dst, std::size_t count) override;
  bool Skip(std::uint64_t count) override;
  bool Rewind() override;

 private:
  std::string_view bytes_;
  std::size_t pos_ = 0;
};

class FileSource : public ByteSource {
 public:
  FileSource() = default;
  FileSource(FileSource&&) = default;
  FileSource& operator=(FileSource&&) = default;

  // Opens path for reading bytes; on a failure the source is not open and
  // Failure() holds the reason.
  bool Open(const std::string& path);

  std::size_t Read(std::uint8_t* dst, std::size_t count) override;
  bool Skip(std::uint64_t count) override;
  bool Rewind() override;

 private:
  struct Close {
    void operator()(std::FILE* f) const { std::fclose(f); }
  };
  std::unique_ptr<std::FILE, Close> file_;
};

// Passes reads through to another source and tells, after each, how many
// bytes have come so far of the total.
class ProgressSource : public ByteSource {
 public:
  using Report = std::function<void(std::uint64_t done, std::uint64_t total)>;
  ProgressSource(ByteSource& inner, std::uint64_t total, Report report)
      : inner_(inner), total_(total), report_(std::move(report)) {}
  std::size_t Read(std::uint8_t* dst, std::size_t count) override;
  bool Skip(std::uint64_t count) override;
  bool Rewind() override;

 private:
  // Takes the inner source's failure over, and gives ok.
  bool Follow(bool ok);

  ByteSource& inner_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
  Report report_;
};

// The length of a file in bytes, or false with the system's words: also for
// a name that is a folder or no regular file.
bool FileLength(const std::string& path, std::uint64_t& length, std::string& reason);

}  // namespace kestrum
