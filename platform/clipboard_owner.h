#pragma once

// Whether the program that owns the X clipboard is there to give it.
//
// The toolkit's own reading waits for that program with the event loop at a standstill, for seconds
// where it has stopped or hangs. So it is asked something small first, in a way that waits within
// an event loop; who has answered that answers the toolkit, too.

namespace marvolen {

// Interface thread. Waits for the answer at most patience milliseconds; events other than the
// user's input go on being handled. True at once where there is no X display, and where nobody owns
// the clipboard.
bool ClipboardOwnerAnswers(int patience);

}  // namespace marvolen
