#include "PlantedProgram.h"

// A test that does not look at how its program ends. It has to fail, which is what its ctest entry wants.
TEST(Inattentive, DoesNotLookAtTheEndOfItsProgram) {
    runPlanted("race");
}
