#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace querlin {

/// What users call an application, from the desktop's entries of installed programs. Never changed once made.
class ApplicationNames {
public:
    struct Entry {
        std::string identifier;  ///< file name without ".desktop": "org.xfce.mousepad"
        std::string name;        ///< in the user's language
        std::string windowClass; ///< of StartupWMClass
    };

    /// Earlier entries take precedence.
    explicit ApplicationNames(const std::vector<Entry>& entries);
    /// Reads all entries; tens of milliseconds. Any thread.
    static ApplicationNames installed();

    /// By its identifier, or by the class of its windows.
    std::optional<std::string> ofIdentifier(std::string_view identifier) const;

private:
    using Names = std::map<std::string, std::string, std::less<>>;
    Names byIdentifier_;
    Names byWindowClass_;
    Names byLastPart_; ///< of an identifier: "mousepad"
};

} // namespace querlin
