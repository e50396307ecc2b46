#pragma once

namespace tickwise {

/// Frees the tables of the JSON parser. The next body makes new ones.
void releaseJsonTables();

} // namespace tickwise
