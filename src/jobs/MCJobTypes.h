#pragma once

// Makes every job class known to the queue's job factory. Called once at
// start-up (static registration would be dropped by the linker).
namespace MCJobTypes {
void registerAll();
}
