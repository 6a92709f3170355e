#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zarn::host::video {

/// Checks the text of a channel's source:
/// - `test:PATTERN[?codec=h264|h265&width=W&height=H&rate=R]`: moving test video; PATTERN is one of GStreamer's
///   `videotestsrc` patterns by name, W and H even numbers of pixels, R frames per second as `25` or `30000/1001`;
/// - `rtsp://HOST[:PORT]/PATH`, `rtsps://...`: another RTSP server, without credentials in the text;
/// - `v4l2:/dev/videoN`: a camera of this machine;
/// - anything else: the path of a video file.
/// Whether the file, host or camera exists is not looked at. An empty text is no error: such a channel is only
/// described. Returns what is wrong, naming part, value and rule; none when nothing is. Thread: any.
std::optional<std::string> CheckSource(std::string_view source);

/// The text of a source as it may be shown: an address without what stands before "@" and behind "?", where people put
/// credentials although they have members of their own. Any text will do. Thread: any.
std::string WithoutSecrets(std::string_view source);

} // namespace zarn::host::video
