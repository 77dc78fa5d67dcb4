#pragma once

namespace vesk::python {

/// Lets libraries give up the interpreter's lock (vesk/host/Lock.h).
void prepareLock();

}  // namespace vesk::python
