// The sample groups that come with the program: group files in a folder of their own, as installed
// or in the build folder.
#pragma once

#include <QString>

namespace commands {

struct CommandCall;

// Whether there are any.
bool hasSamples();

// Imports them, next to what the library holds: a group whose name is taken is left out. Then the
// first of them is selected.
void openSamples(CommandCall& call);

// Has them be looked for in that folder, or where they belong when it is empty.
void useSamplesFolder(const QString& folder);

} // namespace commands
