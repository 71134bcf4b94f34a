#pragma once

#include "state/PreferencesStore.h"

#include <filesystem>
#include <string_view>

/// Takes over the settings of the earlier product, once.
namespace querlin::Migration {

/// Copies each known key that the earlier domain's file holds and the store doesn't, marks the store
/// as migrated, and logs it. A domain that can't be read counts as empty and its file is left
/// alone. True if at least one setting was copied. Runs before the settings are built.
bool runIfNeeded(PreferencesStore& store, std::string_view legacyDomain,
                 const std::filesystem::path& legacyFile);

} // namespace querlin::Migration
