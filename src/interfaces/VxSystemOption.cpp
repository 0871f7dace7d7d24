// VxSystemOption: the singleton's storage. Not locked: options are set and read on the one
// thread that holds the GL context.
#include <interfaces/VxSystemOption.h>

VxSystemOption* VxSystemOption::GetInstance() {
    static VxSystemOption instance;
    return &instance;
}
