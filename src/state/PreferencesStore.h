#pragma once

#include "foundation/Clock.h"
#include "state/PreferenceDomain.h"

#include <filesystem>
#include <optional>
#include <string>

namespace querlin {

/// A preferences domain that lives in a file of its own. Every change is in memory at once and in
/// the file before the call returns. Main thread only.
///
/// No failure reaches the caller. A damaged file is set aside under a dated name and the log says so;
/// a file that can neither be read nor set aside is never written over; a write that fails is noted
/// once and tried again with the next change.
class PreferencesStore {
public:
    PreferencesStore(std::filesystem::path file, const Clock& clock);
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

    /// What is wrong with the file, in German for the user; nothing as a rule.
    std::optional<std::string> trouble() const;

    /// Puts the changes of a scope into one write at its end.
    class Batch {
    public:
        explicit Batch(PreferencesStore& store) : store_(store) { ++store_.openBatches_; }
        ~Batch() {
            if (--store_.openBatches_ == 0 && store_.unsaved_) store_.save();
        }
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

    private:
        PreferencesStore& store_;
    };

private:
    void changed();
    void save();

    std::filesystem::path file_;
    PreferenceDomain domain_;
    int openBatches_ = 0;
    bool unsaved_ = false;
    bool mayWrite_ = true;
    std::optional<std::string> readingTrouble_;
    std::optional<std::string> writingTrouble_;
};

} // namespace querlin
