// Deleting the selected pictures, which go to the trash and can be brought back.
#pragma once

namespace commands {

struct CommandCall;

// Asks once for all of them.
void deletePicture(CommandCall& call);

} // namespace commands
