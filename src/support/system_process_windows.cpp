#include <windows.h>
// windows.h comes first: the others need its types.
#include <fcntl.h>
#include <io.h>

#include <cstdlib>
#include <initializer_list>

#include "support/system_process.h"

namespace quillet {
namespace {

void open_standard_handles() {
  for (const int handle : {0, 1, 2}) {
    if (::_get_osfhandle(handle) < 0) ::_open("nul", _O_RDWR);
  }
}

UINT code_page_before = 0;

void restore_code_page() {
  ::SetConsoleOutputCP(code_page_before);
}

// The console belongs to whoever started the program and gets its own code page back.
void show_utf8() {
  code_page_before = ::GetConsoleOutputCP();
  if (code_page_before == 0 || code_page_before == CP_UTF8) return;
  if (::SetConsoleOutputCP(CP_UTF8)) std::atexit(restore_code_page);
}

}  // namespace

void PREPARE_PROCESS() {
  open_standard_handles();
  show_utf8();
}

}  // namespace quillet
