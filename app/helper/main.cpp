// veltro-helper: the administrator side of Veltro, started through pkexec. Its work
// is in the removal library (removal/HelperProgram.h); nothing here links Qt.

#include "removal/HelperProgram.h"

int main(int argc, char* argv[]) {
    return HelperProgram::run(argc, argv);
}
