#include "RestingPage.h"

namespace host {

HttpResponse::Body RestingPage::get() {
    const Clock::time_point begun = now();
    if (page && begun < restsUntil)
        return page;
    page = std::make_shared<const std::string>(make());
    const Clock::time_point made = now();
    restsUntil = made + 3 * (made - begun);
    return page;
}

} // namespace host
