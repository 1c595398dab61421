// The process entry.
#include <wx/init.h>

int main(int argc, char** argv)
{
    return wxEntry(argc, argv);
}
