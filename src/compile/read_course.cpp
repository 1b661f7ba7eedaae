#include "compile/read_course.h"

#include "base/utf8.h"
#include "files/text_encoding.h"

#include <algorithm>

std::uint32_t ReadMsLeft(const ReadCourse& course, std::uint64_t now) {
    constexpr std::uint64_t longest = 0xFFFFFFFE;
    return now >= course.deadline ? 0 : static_cast<std::uint32_t>(std::min(course.deadline - now, longest));
}

std::uint32_t ReadPatience(const ReadCourse& course, std::uint64_t now) {
    const std::uint32_t left = ReadMsLeft(course, now);
    if (!course.processEnded) return left;
    const std::uint64_t late = std::min(now - course.endedAt, kReadLateMs);
    return std::min(left, static_cast<std::uint32_t>(kReadLateMs - late));
}

ReadStep ReadNothingCame(const ReadCourse& course, std::uint64_t now) {
    return ReadMsLeft(course, now) == 0 ? ReadStep::TimedOut : ReadStep::PipeEnd;
}

ReadStep ReadPieceCame(ReadCourse& course, std::size_t bytes, ReadStep step, std::uint64_t now) {
    if (course.processEnded) course.lateBytes += bytes;
    if (step != ReadStep::Go) return step;
    if (bytes > 0 && course.silenceMs > 0) course.deadline = now + course.silenceMs;
    if (ReadMsLeft(course, now) == 0) return ReadStep::TimedOut;
    return course.lateBytes > kReadLateBytes ? ReadStep::PipeEnd : ReadStep::Go;
}

std::size_t ReadDecodable(std::string_view bytes, std::string_view leadBytes) {
    const std::size_t whole = WholeCharacters(bytes);
    return IsValidUtf8Bytes(bytes.data(), whole) ? whole : WholeDoubleBytes(bytes, leadBytes);
}

BuildEnd ReadEndOf(ReadStep step) {
    if (step == ReadStep::Stopped) return BuildEnd::Stopped;
    return step == ReadStep::TimedOut ? BuildEnd::TimedOut : BuildEnd::Ended;
}

bool ReadLeavesRunning(BuildStage stage, BuildEnd end) {
    return end == BuildEnd::TimedOut && (stage == BuildStage::PreBuild || stage == BuildStage::PostBuild);
}
