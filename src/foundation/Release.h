#pragma once

namespace querlin {

/// Deleter for the objects of C libraries: `std::unique_ptr<pcre2_code, Release<pcre2_code_free>>`.
template<auto release>
struct Release {
    template<class Object>
    void operator()(Object* object) const {
        release(object);
    }
};

} // namespace querlin
