#include "desktop/DictationContext.h"

namespace querlin {

std::string DictationContext::summary() const {
    return appName + " [" + applicationId.value_or("ohne Kennung") + "] · " + std::string(displayName(field));
}

} // namespace querlin
