#pragma once

#include "state/CoalescedWriter.h"
#include "state/PreferenceDomain.h"

#include <filesystem>
#include <optional>
#include <string>

namespace querlin {

/// A preferences domain that lives in a file of its own. Every change is in memory at once and in the file
/// less than a second later; the destructor writes what is still missing. Main thread only.
///
/// No failure reaches the caller. A damaged file is set aside under a dated name and the log says so; a file
/// that can neither be read nor set aside is never written over; a write that fails is reported through
/// `writingTrouble` and tried again with the next change.
class PreferencesStore {
public:
    /// Changes within this time are written together.
    static constexpr Duration delay = std::chrono::milliseconds(500);

    /// Writes run on `runtime.background`.
    PreferencesStore(std::filesystem::path file, Runtime runtime);
    PreferencesStore(const PreferencesStore&) = delete;
    PreferencesStore& operator=(const PreferencesStore&) = delete;

    bool contains(std::string_view key) const { return domain_.contains(key); }
    template<class Type>
    std::optional<Type> get(std::string_view key) const {
        return domain_.get<Type>(key);
    }

    void set(std::string_view key, PreferenceValue value);
    void remove(std::string_view key);
    void copyFrom(const PreferenceDomain& other, std::string_view key);

    /// Writes here and now what isn't in the file yet.
    void flush() { writer_.flush(); }

    /// What is wrong with the file, in German for the user; nothing as a rule.
    std::optional<std::string> trouble() const;
    /// The part of it that was there at the start.
    const std::optional<std::string>& readingTrouble() const { return readingTrouble_; }
    /// The part of it that may come at any time.
    const Published<std::optional<std::string>>& writingTrouble() const { return writer_.trouble(); }

private:
    void changed();

    std::filesystem::path file_;
    PreferenceDomain domain_;
    bool mayWrite_ = true;
    std::optional<std::string> readingTrouble_;
    CoalescedWriter writer_; ///< last: its end writes the above
};

} // namespace querlin
