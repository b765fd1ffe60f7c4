// What any converter must spend on this machine: start, read the input in
// 1 MiB blocks into one reused buffer, first-touch an image on large pages,
// and write the output. bench/compare runs it beside the converters.
//
//   floor INPUT OUTPUT OUTPUT_BYTES IMAGE_BYTES
//
// The output comes from the image when it is no larger, else from one 2 MiB
// block written over and over.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "image/PageMemory.h"

namespace {

int Fail(const char* what) {
  std::perror(what);
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 5) {
    std::fprintf(stderr, "usage: floor INPUT OUTPUT OUTPUT_BYTES IMAGE_BYTES\n");
    return 2;
  }
  const std::size_t outputBytes = std::strtoull(argv[3], nullptr, 0);
  const std::size_t imageBytes = std::strtoull(argv[4], nullptr, 0);
  auto* image = static_cast<char*>(kestrum::AllocatePages(imageBytes));
  if (!image) return Fail("image");
  std::memset(image, 0xFF, imageBytes);

  constexpr std::size_t kReadBlock = std::size_t{1} << 20;
  auto* block = static_cast<char*>(kestrum::AllocatePages(kestrum::kLargePage));
  if (!block) return Fail("block");
  const int in = ::open(argv[1], O_RDONLY);
  if (in < 0) return Fail(argv[1]);
  for (;;) {
    const ssize_t got = ::read(in, block, kReadBlock);
    if (got < 0) return Fail(argv[1]);
    if (got == 0) break;
  }
  ::close(in);

  const int out = ::open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (out < 0) return Fail(argv[2]);
  const bool fromImage = outputBytes <= imageBytes;
  const std::size_t piece = fromImage ? std::size_t{1} << 24 : kestrum::kLargePage;
  if (!fromImage) std::memset(block, '0', kestrum::kLargePage);
  for (std::size_t done = 0; done < outputBytes;) {
    const std::size_t n = std::min(piece, outputBytes - done);
    const ssize_t put = ::write(out, fromImage ? image + done : block, n);
    if (put <= 0) return Fail(argv[2]);
    done += static_cast<std::size_t>(put);
  }
  if (::close(out) != 0) return Fail(argv[2]);
  return 0;
}
