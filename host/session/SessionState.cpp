#include "session/SessionState.h"

#include <ParamStore.h>

namespace host {

// A download may still run: it must not find a window that is gone.
SessionState::~SessionState() {
    GlobalParamWrapper::GetInstance()->SetMainWnd(nullptr);
}

}  // namespace host
