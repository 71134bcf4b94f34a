#pragma once

#include "foundation/Time.h"

#include <map>
#include <string>

namespace querlin {

/// How long each application may still keep us waiting. Within a second none holds the program up for more
/// than 200 ms, however many questions it is asked; one that has let a question wait in vain is left alone
/// that long. What is answered quickly costs nothing.
class Patience {
public:
    /// How long a question may wait, `longest` at most, which may be over already. Zero: it isn't asked.
    Duration limit(const std::string& name, Duration longest, Instant now);
    /// An answer came after a while.
    void answered(const std::string& name, Duration after, Instant now);
    /// None came.
    void gaveUp(const std::string& name, Instant now);

private:
    struct Account {
        Instant until;
        Duration left{};
    };
    std::map<std::string, Account> accounts_;
};

} // namespace querlin
