#include "platform/curl/CurlLibrary.h"

#include <optional>

#include <dlfcn.h>

namespace querlin {

namespace {

/// Of the interface's version 4, as the headers are.
constexpr auto fileName = "libcurl.so.4";

std::optional<CurlLibrary> load() {
    void* const library = ::dlopen(fileName, RTLD_NOW | RTLD_LOCAL); // For good.
    if (!library) return std::nullopt;
    CurlLibrary found;
    bool isComplete = true;
    const auto find = [&]<class Function>(Function*& function, const char* name) {
        function = reinterpret_cast<Function*>(::dlsym(library, name)); // NOLINT(*-reinterpret-cast)
        isComplete = isComplete && function;
    };
    find(found.globalInit, "curl_global_init");
    find(found.easyInit, "curl_easy_init");
    find(found.easySetopt, "curl_easy_setopt");
    find(found.easyGetinfo, "curl_easy_getinfo");
    find(found.easyNextheader, "curl_easy_nextheader");
    find(found.easyStrerror, "curl_easy_strerror");
    find(found.easyCleanup, "curl_easy_cleanup");
    find(found.multiInit, "curl_multi_init");
    find(found.multiAddHandle, "curl_multi_add_handle");
    find(found.multiRemoveHandle, "curl_multi_remove_handle");
    find(found.multiPerform, "curl_multi_perform");
    find(found.multiPoll, "curl_multi_poll");
    find(found.multiWakeup, "curl_multi_wakeup");
    find(found.multiInfoRead, "curl_multi_info_read");
    find(found.multiCleanup, "curl_multi_cleanup");
    if (!isComplete || found.globalInit(CURL_GLOBAL_DEFAULT) != CURLE_OK) return std::nullopt;
    return found;
}

} // namespace

const CurlLibrary* CurlLibrary::get() {
    static const auto library = load();
    return library ? &*library : nullptr;
}

} // namespace querlin
