#include "platform/files/Packages.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

using namespace std::string_view_literals;

// Lower case and sorted: looked up by bisection.
constexpr std::array kPackageExtensions{
    "abbu"sv,
    "action"sv,
    "aplibrary"sv,
    "app"sv,
    "appex"sv,
    "band"sv,
    "bundle"sv,
    "clr"sv,
    "colorpicker"sv,
    "component"sv,
    "dictionary"sv,
    "docset"sv,
    "download"sv,
    "dsym"sv,
    "fcpbundle"sv,
    "framework"sv,
    "imovielibrary"sv,
    "kext"sv,
    "key"sv,
    "logicx"sv,
    "mailbundle"sv,
    "mdimporter"sv,
    "migratedphotolibrary"sv,
    "mpkg"sv,
    "musiclibrary"sv,
    "nib"sv,
    "numbers"sv,
    "osax"sv,
    "pages"sv,
    "photolibrary"sv,
    "photoslibrary"sv,
    "pkg"sv,
    "playground"sv,
    "plugin"sv,
    "prefpane"sv,
    "qlgenerator"sv,
    "rtfd"sv,
    "saver"sv,
    "scptd"sv,
    "service"sv,
    "sparsebundle"sv,
    "theater"sv,
    "tvlibrary"sv,
    "vst"sv,
    "vst3"sv,
    "wdgt"sv,
    "workflow"sv,
    "xcarchive"sv,
    "xcodeproj"sv,
    "xcworkspace"sv,
    "xpc"sv,
};

constexpr std::size_t kLongest = "migratedphotolibrary"sv.size();

static_assert(std::is_sorted(kPackageExtensions.begin(), kPackageExtensions.end()));

char lowered(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool isPackageName(QByteArrayView name)
{
    const std::string_view text(name.data(), static_cast<std::size_t>(name.size()));
    const std::size_t dot = text.rfind('.');
    // A dot at the start hides a name; it does not begin an extension.
    if (dot == std::string_view::npos || dot == 0 || text.size() - dot - 1 > kLongest)
        return false;
    std::array<char, kLongest> extension{};
    const auto end = std::transform(text.begin() + dot + 1, text.end(), extension.begin(), lowered);
    return std::binary_search(kPackageExtensions.begin(), kPackageExtensions.end(),
                              std::string_view(extension.begin(), end));
}
