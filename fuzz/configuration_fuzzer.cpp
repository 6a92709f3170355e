// The configuration file, which people edit, and command-line overrides.
#include "host/access/access_settings.h"
#include "host/device_settings.h"
#include "host/events/mqtt_settings.h"
#include "host/events/queue_watch.h"
#include "host/settings.h"
#include "host/video/channel_settings.h"
#include "host/web/web_settings.h"
#include "require.h"

#include <zarn/configuration/error.h>
#include <zarn/configuration/node.h>
#include <zarn/configuration/text.h>

#include <boost/json/value.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace zarn::fuzz {
namespace {

using configuration::Layer;
using configuration::node::Root;

constexpr std::size_t MaximumLength = std::size_t{64} * 1024;
constexpr std::size_t MaximumOverrides = 16;

/// Separates the file from the overrides, which are written one per line as for `--set`.
constexpr std::string_view Separator = "\n--set\n";

/// True if the work succeeded; error messages must be single lines.
template <class Work>
bool Try(Work const& work) {
    try {
        work();
        return true;
    } catch (configuration::Error const& error) {
        std::string_view const text = error.what();
        Require(IsLine(text, text.size()), "an error is one line");
        return false;
    }
}

std::shared_ptr<Root> MakeTree() {
    auto root = std::make_shared<Root>();
    host::DescribeSettings(*root);
    return root;
}

/// Everything that the host reads from the tree must be readable.
void ReadAll(Root const& root) {
    host::ReadIdentity(root);
    host::ReadDiscoveryAnywhere(root);
    host::ReadAccessSettings(root);
    host::web::ReadLimits(root);
    host::events::ReadQueuedWarning(root);
    Try([&] { host::events::ReadMqttSettings(root); });
    host::video::ReadChannels(root);
}

void CheckFile(Root& root, std::string_view text) {
    auto const before = root.ToJson(Layer::Persisted);
    bool const taken = Try([&] { root.FromJson(configuration::text::Parse(text)); });
    auto const after = root.ToJson(Layer::Persisted);
    if (!taken) {
        Require(after == before, "a file that is refused changes nothing");
        return;
    }
    auto const written = configuration::text::Format(after);
    auto const again = MakeTree();
    Require(Try([&] { again->FromJson(configuration::text::Parse(written)); }), "what was saved can be read");
    Require(configuration::text::Format(again->ToJson(Layer::Persisted)) == written, "saving it again changes nothing");
}

void Override(Root& root, std::string_view line) {
    auto const sign = line.find('=');
    if (sign == 0 || sign == std::string_view::npos) return;
    Try([&] { host::OverrideSetting(root, std::string(line.substr(0, sign)), std::string(line.substr(sign + 1))); });
}

void CheckOverrides(Root& root, std::string_view lines) {
    auto const before = root.ToJson(Layer::Persisted);
    for (std::size_t count = 0; !lines.empty() && count < MaximumOverrides; ++count) {
        auto const line = lines.substr(0, lines.find('\n'));
        Override(root, line);
        lines.remove_prefix(std::min(line.size() + 1, lines.size()));
    }
    Require(root.ToJson(Layer::Persisted) == before, "overrides are never saved");
}

} // namespace
} // namespace zarn::fuzz

/// A file is either refused with a one-line error and without effect, or accepted and unchanged after saving and
/// reloading. Overrides are accepted or refused in the same way and never saved. The resulting tree must always be
/// usable.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    using namespace zarn::fuzz;
    return CheckInput(data, size, MaximumLength, [](std::string_view text) {
        auto const end = std::min(text.find(Separator), text.size());
        auto const root = MakeTree();
        CheckFile(*root, text.substr(0, end));
        CheckOverrides(*root, text.substr(std::min(end + Separator.size(), text.size())));
        ReadAll(*root);
    });
}
