// SPDX-License-Identifier: GPL-3.0-or-later
// Background work on a document gives way to the window's thread.
#pragma once

// Called first in every job of a document's worker pool (check, save, hash,
// recovery record). On a busy machine the event loop otherwise waits for a
// core behind a check of 300 MB (stalls of 130-220 ms with two cores).
// Linux keeps a nice value per thread; a worker's is raised by 5 once and
// stays so, as its pool serves only background work.
void yieldToTheWindow();
