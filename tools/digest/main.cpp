// Prints what the daemon calculates as one line a subject, to compare machines with each other;
// scripts/test-arm does.
#include <cinttypes>
#include <cstdio>

#include "digest.h"

int main() {
  for (const auto& subjects :
       {digest::WallSubjects(), digest::VideoSubjects(), digest::PictureSubjects()}) {
    for (const digest::Subject& subject : subjects) {
      digest::Digest digest;
      subject.run(digest);
      std::printf("%016" PRIx64 "  %s\n", digest.value(), subject.name);
    }
  }
}
