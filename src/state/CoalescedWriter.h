#pragma once

#include "foundation/Files.h"
#include "foundation/Lifetime.h"
#include "foundation/Published.h"
#include "foundation/Runtime.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace querlin {

/// Writes a file whose content changes often, without holding up the main thread. A write begins at most
/// `Plan::delay` after the first change that it contains and takes all changes made until then; one runs at a
/// time, in the background.
///
/// What a failed write should have saved stays unsaved: the next change, `flush` and the destructor try
/// again. Main thread.
class CoalescedWriter {
public:
    /// Writes one version of the content. Runs in the background or within `flush`, never twice at a time.
    using Write = std::move_only_function<FileResult<>()>;

    struct Plan {
        Duration delay{};
        /// What is written, in German: "Einstellungen".
        std::string subject;
        std::string logCategory;
        /// Takes a copy of the content for a write.
        std::function<Write()> prepare;
    };

    CoalescedWriter(Runtime runtime, Plan plan);
    /// Flushes.
    ~CoalescedWriter();
    CoalescedWriter(const CoalescedWriter&) = delete;
    CoalescedWriter& operator=(const CoalescedWriter&) = delete;

    /// The content has changed.
    void changed();
    /// Waits for a write that is under way and writes here and now what is still unsaved.
    void flush();

    /// Why the content isn't saved, in German for the user; nothing as a rule.
    const Published<std::optional<std::string>>& trouble() const { return trouble_; }

private:
    struct Order;

    void schedule();
    void begin();
    void ended(std::uint64_t number, const FileResult<>& result);
    void take(const FileResult<>& result);

    Runtime runtime_;
    Plan plan_;
    Published<std::optional<std::string>> trouble_;
    std::shared_ptr<Order> order_; ///< shared with the writes
    std::uint64_t lastNumber_ = 0; ///< of the newest write
    bool isUnsaved_ = false;
    bool isScheduled_ = false;
    bool isUnderWay_ = false;
    Registration timer_;
    Lifetime lifetime_;
};

} // namespace querlin
