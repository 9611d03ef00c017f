#include "workbench/host/model/history.h"

#include <gtest/gtest.h>

namespace workbench {
namespace {

class HistoryTest : public testing::Test {
  protected:
    void moveTo(int id, double x) {
        Component& component = *mModel->find({id});
        const ComponentState before = stateOf(component);
        component.position = Transform::shift({x, 0.0, 0.0});
        mHistory.changed(*mModel, {id}, before, "Move component");
    }
    void drag(int id, double x, std::uint32_t atMs) {
        mHistory.openDrag(*mModel);
        moveTo(id, x);
        mHistory.closeDrag(atMs);
    }
    double xOf(int id) { return mModel->find({id})->position.origin().x; }

    std::vector<std::unique_ptr<Model>> mModels = makeSampleModels();
    Model* mModel = mModels.front().get();
    History mHistory;
};

TEST_F(HistoryTest, BracketsOfOneDragAreOneStep) {
    const double start = xOf(41);
    drag(41, 10.0, 1000);
    drag(41, 20.0, 1400);
    drag(41, 30.0, 1400 + History::DRAG_PAUSE_MS);
    EXPECT_EQ(mHistory.undoDepth(), 1u);
    ASSERT_TRUE(mHistory.undo());
    EXPECT_EQ(xOf(41), start);
    ASSERT_TRUE(mHistory.redo());
    EXPECT_EQ(xOf(41), 30.0);
}

TEST_F(HistoryTest, APauseOrOtherComponentsOrAnUndoBeginANewStep) {
    drag(41, 10.0, 1000);
    drag(41, 20.0, 1001 + History::DRAG_PAUSE_MS);
    EXPECT_EQ(mHistory.undoDepth(), 2u) << "pause";
    drag(43, 20.0, 1002 + History::DRAG_PAUSE_MS);
    EXPECT_EQ(mHistory.undoDepth(), 3u) << "other component";
    mHistory.undo();
    drag(41, 40.0, 1003 + History::DRAG_PAUSE_MS);
    EXPECT_EQ(mHistory.undoDepth(), 3u) << "after an undo";
    EXPECT_EQ(mHistory.redoDepth(), 0u);
}

TEST_F(HistoryTest, MovesOutsideABracketAreStepsOfTheirOwnAndEmptyBracketsAreNone) {
    moveTo(41, 1.0);
    moveTo(41, 2.0);
    mHistory.openDrag(*mModel);
    mHistory.closeDrag(5);
    EXPECT_EQ(mHistory.undoDepth(), 2u);
    mHistory.undo();
    EXPECT_EQ(xOf(41), 1.0);
}

TEST_F(HistoryTest, AChangeOfADeletedComponentCanBeTakenBack) {
    moveTo(41, 7.0);
    Component& component = *mModel->find({41});
    const ComponentState before = stateOf(component);
    component.isDeleted = true;
    mHistory.record({"Delete", mModel, {{{41}, before, stateOf(component)}}});
    ASSERT_EQ(mModel->find({41}), nullptr);
    ASSERT_TRUE(mHistory.undo());
    ASSERT_NE(mModel->find({41}), nullptr);
    EXPECT_EQ(xOf(41), 7.0);
}

}  // namespace
}  // namespace workbench
