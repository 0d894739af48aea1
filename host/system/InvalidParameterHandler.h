#pragma once

namespace host {

// Makes the C runtime go on after an invalid parameter, so that a reply which does not fit its record fails the
// operation instead of ending the process. Called once, first thing.
void TolerateInvalidParameters();

}  // namespace host
