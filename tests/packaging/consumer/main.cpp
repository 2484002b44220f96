// Compiles and links against the installed library only, as the editor would.
#include <ActionGateway.h>
#include <CommandProvider.h>

int main()
{
    bool ran = false;
    Action::proposeAction(Action::ACTION_STARTUP, [&ran] { ran = true; });
    return ran ? 0 : 1;
}
