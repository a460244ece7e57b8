#pragma once

// After a death test whose code is to crash: what a sanitizer has reported of it is as expected, and does not
// make the test fail. Nothing in a build without one.
void takeCrashReport();
