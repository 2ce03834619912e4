// How much of the processor's time a thread has had.
#pragma once

namespace platform {

// Seconds that the calling thread alone was running; other threads and programs do not count.
double processorSecondsOfThisThread();

} // namespace platform
