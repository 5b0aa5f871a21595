#pragma once

// Lets assistive tools see and press the controls that paint themselves (control.h).

namespace marvolen {

// Interface thread: has the toolkit describe every CStatic by its own account of itself. Called by
// the first CStatic; further calls do nothing.
void DescribeControlsToAssistiveTools();

}  // namespace marvolen
