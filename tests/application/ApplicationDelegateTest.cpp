// The application around the documents.
#include "ApplicationDelegate.h"

#include <gtest/gtest.h>

namespace {

TEST(ApplicationDelegateTest, AWindowReachesTheApplicationWhileThereIsOne) {
    ApplicationDelegate application;
    EXPECT_EQ(application.documents().application(), &application);
}

} // namespace
