#include "lock.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "errors.h"
#include "vesk/host/Lock.h"

namespace vesk::python {

namespace {

// When the interpreter ends, it ends each thread that asks for its lock, by unwinding the stack, which the
// frames of a call don't survive. So before that such threads are made to wait for good. They count
// themselves while they may be beyond the question.
std::atomic<bool> sIsEnding = false;
std::atomic<int> sTaking = 0;
std::thread::id sEndingThread;

void takeLock(void* released) {
  ++sTaking;
  if (sIsEnding && std::this_thread::get_id() != sEndingThread) {
    --sTaking;
    for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
  }
  PyEval_RestoreThread(static_cast<PyThreadState*>(released));
  --sTaking;
}

/// Runs in the thread that ends the interpreter, before it does.
PyObject* end(PyObject*, PyObject*) {
  sEndingThread = std::this_thread::get_id();
  sIsEnding = true;
  PyThreadState* const released = PyEval_SaveThread();
  // A process that was forked may count threads that it doesn't have.
  for (int i = 0; i < 1000 && sTaking > 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  PyEval_RestoreThread(released);
  Py_RETURN_NONE;
}

PyMethodDef sEnd = {"_end", end, METH_NOARGS, nullptr};

void* releaseLock() {
  static bool sIsPrepared = false;
  if (!sIsPrepared) {
    Ref const module = Ref::checked(PyImport_ImportModule("atexit"));
    Ref const function = Ref::checked(PyCFunction_New(&sEnd, nullptr));
    Ref const done = Ref::checked(PyObject_CallMethod(module.get(), "register", "O", function.get()));
    sIsPrepared = true;
  }
  return PyEval_SaveThread();
}

}  // namespace

void prepareLock() { host::setLockAccess({&releaseLock, &takeLock}); }

}  // namespace vesk::python
