// The regions of a document's window between which a key jumps.
#pragma once

class MoxDocumentWindow;

namespace FocusRegions {

/// Puts the keyboard into the next region (1) or the previous one (-1): tabs, the parts of the page, the
/// status line, and round again. Regions that take no keyboard are passed over.
void selectNext(MoxDocumentWindow& window, int step);

} // namespace FocusRegions
