#include <teleform/aastra/elements.h>
#include <teleform/aastra/execute.h>

AastraIPPhoneExecute::AastraIPPhoneExecute(const std::string& uri)
    : IPPhoneExecuteXML(uri.c_str()), URI(uri) {}

AastraIPPhoneExecute::~AastraIPPhoneExecute() = default;

void AastraIPPhoneExecute::Render(std::string& out) {
  using namespace teleform;
  Append(out,
         Line("<AastraIPPhoneExecute", AastraFlags(destroyOnExit, beep), ">"),
         Line("<ExecuteItem URI=\"", UpToNul(URI), "\"/>"),
         ForEach(softKeys, AastraSoftKeyItem),
         Line("</AastraIPPhoneExecute>"));
}
