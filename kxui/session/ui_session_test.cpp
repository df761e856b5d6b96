// The session hub: what it creates, the façades it keeps, and the release of a session's
// locks.
#include "kxui/session/ui_session.h"

#include <cstdlib>
#include <functional>
#include <new>

#include "kxui/business/progids.h"
#include "kxui/business/purchase_order.h"
#include "kxui/business/requisition.h"
#include "kxui/testing/test_runtime.h"

// Out of memory on request: the next allocation of this thread fails.
thread_local bool fail_next_allocation = false;

void* operator new(std::size_t size) {
  if (fail_next_allocation) {
    fail_next_allocation = false;
    throw std::bad_alloc();
  }
  if (void* p = std::malloc(size ? size : 1)) return p;
  throw std::bad_alloc();
}
// Kept out of line: inlined next to a new-expression, free() looks mismatched to GCC.
[[gnu::noinline]] void operator delete(void* p) noexcept { std::free(p); }
[[gnu::noinline]] void operator delete(void* p, std::size_t) noexcept { std::free(p); }

namespace kxui {
namespace {

using namespace ::testing;
using kxui::testing::ErrorIs;
using kxui::testing::FakeBusinessObject;
using Names = std::vector<std::string>;

class MockRequisition : public business::Requisition, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, Load, (const SessionPtr&, int32_t, bool, Variant&), (override));
  MOCK_METHOD(std::shared_ptr<business::RequisitionHeader>, Header, (), (override));
  MOCK_METHOD(bool, Success, (), (override));
  MOCK_METHOD(bool, ReleaseSessionLocks, (const SessionPtr&, Variant&), (override));
};

class MockPurchaseOrder : public business::PurchaseOrder, public FakeBusinessObject {
 public:
  MOCK_METHOD(bool, ReleaseSessionLocks, (const SessionPtr&, Variant&), (override));
};

struct FakeSecurity : business::SecurityObject {};
struct FakeLogin : business::LoginObject {};

class UISessionTest : public Test {
 protected:
  std::shared_ptr<kxui::testing::TestEnv> env = kxui::testing::TestEnv::make();
  std::shared_ptr<BasicSession> hub_session = kxui::testing::make_session();
  std::shared_ptr<BasicSession> session = kxui::testing::make_session();
  std::shared_ptr<FakeSecurity> security = std::make_shared<FakeSecurity>();
  std::shared_ptr<StrictMock<MockRequisition>> req = std::make_shared<StrictMock<MockRequisition>>();
  std::shared_ptr<StrictMock<MockPurchaseOrder>> po =
      std::make_shared<StrictMock<MockPurchaseOrder>>();
  std::unique_ptr<UISession> hub;

  void SetUp() override {
    env->provide(progid::KxSession, hub_session);
    env->provide(business::security_class::kSecurity, security);
    env->provide(progid::Requisition, req);
    env->provide(progid::PurchaseOrder, po);
    req->fail_with(40, "Requisition", "locks held elsewhere");
    po->fail_with(41, "PurchaseOrder", "order locks held elsewhere");
    hub = std::make_unique<UISession>(env->runtime);
  }
};

TEST_F(UISessionTest, CreatesItsErrorObjectThenTheSessionThenTheSecurityObject) {
  EXPECT_EQ(env->created, (Names{"factory:KxUtility03.KxError", "factory:KxUtility03.KxSession",
                                 "direct:KxSecurity03.Security"}));
  EXPECT_EQ(hub->Session(), hub_session);
  EXPECT_EQ(hub->Security(), security);
  EXPECT_EQ(hub->Error()->Number(), 0);
}

TEST_F(UISessionTest, ACreationFailureIsRecordedAndStopsTheCreation) {
  // What fails, and what the hub then holds.
  const std::tuple<const char*, bool, bool> cases[] = {
      {"KxUtility03.KxError", true, true},
      {"KxUtility03.KxSession", false, false},
      {business::security_class::kSecurity, true, false},
  };
  for (const auto& [missing, has_session, has_security] : cases) {
    SCOPED_TRACE(missing);
    env->fail_error_creation = std::string_view(missing) == progid::KxError;
    if (!env->fail_error_creation) env->runtime->Unregister(missing);
    UISession broken(env->runtime);
    EXPECT_EQ(broken.Error()->Number(), 429);
    EXPECT_THAT(broken.Error()->Source(), StartsWith("UISession::Class_Initialize "));
    EXPECT_EQ(broken.Session() != nullptr, has_session);
    EXPECT_EQ(broken.Security() != nullptr, has_security);
    env->provide(progid::KxSession, hub_session);
  }
}

// Every façade property: created on first read with the hub's runtime (its error object
// comes from the hub's runtime), then the same instance on every read.
// The façade properties, by name.
using Read = std::function<std::shared_ptr<Facade>(UISession&)>;
const std::pair<const char*, Read> kFacades[] = {
    {"Attach", [](UISession& h) { return h.Attach(); }},
    {"Cat", [](UISession& h) { return h.Cat(); }},
    {"Com", [](UISession& h) { return h.Com(); }},
    {"Lang", [](UISession& h) { return h.Lang(); }},
    {"PO", [](UISession& h) { return h.PO(); }},
    {"Rcv", [](UISession& h) { return h.Rcv(); }},
    {"ReconPO", [](UISession& h) { return h.ReconPO(); }},
    {"Report", [](UISession& h) { return h.Report(); }},
    {"Req", [](UISession& h) { return h.Req(); }},
    {"Search", [](UISession& h) { return h.Search(); }},
    {"SF", [](UISession& h) { return h.SF(); }},
    {"Tools", [](UISession& h) { return h.Tools(); }},
    {"Utility", [](UISession& h) { return h.Utility(); }},
    {"WF", [](UISession& h) { return h.WF(); }},
};

// Created on first read with the hub's runtime (its error object comes from the hub's
// runtime), then the same instance on every read; class UI + the property's name.
TEST_F(UISessionTest, FacadePropertiesCreateOnFirstReadAndKeepTheInstance) {
  EXPECT_EQ(env->error_infos.size(), 1u) << "no façade before it is asked for";
  std::vector<std::weak_ptr<Facade>> made;
  for (const auto& [name, read] : kFacades) {
    SCOPED_TRACE(name);
    auto first = read(*hub);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->class_name(), std::string("UI") + name);
    EXPECT_EQ(first->Error(), env->last_error()) << "created with the hub's runtime";
    const size_t errors = env->error_infos.size();
    EXPECT_EQ(read(*hub), first);
    EXPECT_EQ(env->error_infos.size(), errors) << "kept, not created again";
    made.push_back(first);
  }
  EXPECT_EQ(hub->Error()->Number(), 0);
  hub.reset();
  for (const auto& w : made) EXPECT_TRUE(w.expired()) << "released with the hub";
}

TEST_F(UISessionTest, AFacadeThatCannotBeCreatedIsRecordedAndTriedAgain) {
  for (const auto& [name, read] : kFacades) {
    SCOPED_TRACE(name);
    fail_next_allocation = true;
    EXPECT_EQ(read(*hub), nullptr);
    EXPECT_THAT(hub->Error(), ErrorIs(7, std::string("UISession::") + name + " "));
    EXPECT_NE(read(*hub), nullptr);
  }
}

TEST_F(UISessionTest, AKeptFacadesErrorStaysVisibleThroughTheHub) {
  EXPECT_CALL(*req, Load).WillOnce(Return(false));
  Variant name;
  EXPECT_FALSE(hub->Req()->GetReqName(session, 7, name));
  EXPECT_THAT(hub->Req()->Error(), ErrorIs(40, "UIReq::GetReqName Requisition"));
  EXPECT_EQ(hub->Error()->Number(), 0) << "the hub's own error is untouched";
}

TEST_F(UISessionTest, LoginIsCreatedDirectlyOnFirstReadAndKept) {
  EXPECT_EQ(hub->Login(), nullptr);
  EXPECT_EQ(hub->Error()->Number(), 429);
  EXPECT_THAT(hub->Error()->Source(), StartsWith("UISession::Login "));

  auto login = std::make_shared<FakeLogin>();
  env->provide(business::security_class::kLogin, login);
  EXPECT_EQ(hub->Login(), login) << "an empty slot is tried again";
  env->provide(business::security_class::kLogin, std::make_shared<FakeLogin>());
  EXPECT_EQ(hub->Login(), login);
  EXPECT_EQ(env->count(business::security_class::kLogin), 1);
  EXPECT_EQ(env->created.back(), "direct:KxSecurity03.Login");
}

TEST_F(UISessionTest, ReleaseReqPOLockReleasesRequisitionLocksThenOrderLocks) {
  Variant custom = Variant("custom");
  // Requisition's answer, order's answer (-1: not asked), result, error recorded.
  const std::tuple<bool, int, bool, int32_t, const char*> cases[] = {
      {true, 1, true, 0, ""},
      {false, -1, false, 40, "UISession::ReleaseReqPOLock Requisition"},
      {true, 0, false, 41, "UISession::ReleaseReqPOLock PurchaseOrder"},
  };
  for (const auto& [req_ok, po_answer, result, number, source] : cases) {
    SCOPED_TRACE(source);
    hub->Error()->SetNumber(0);
    hub->Error()->SetSource("");
    env->created.clear();
    {
      InSequence order;
      EXPECT_CALL(*req, ReleaseSessionLocks(Eq(session), Ref(custom)))
          .WillOnce(InvokeWithoutArgs([&, req_ok = req_ok] {
            EXPECT_EQ(env->created, (Names{"factory:KxReq03.Requisition",
                                           "factory:KxPO03.PurchaseOrder"}))
                << "both obtained before either is asked";
            return req_ok;
          }));
      if (po_answer < 0) {
        EXPECT_CALL(*po, ReleaseSessionLocks).Times(0);
      } else {
        EXPECT_CALL(*po, ReleaseSessionLocks(Eq(session), Ref(custom)))
            .WillOnce(Return(po_answer == 1));
      }
    }
    EXPECT_EQ(hub->ReleaseReqPOLock(session, custom), result);
    EXPECT_EQ(hub->Error()->Number(), number);
    EXPECT_EQ(hub->Error()->Source(), source);
    EXPECT_EQ((std::pair{req.use_count(), po.use_count()}), (std::pair{2L, 2L}))
        << "released after the call";
    Mock::VerifyAndClearExpectations(req.get());
    Mock::VerifyAndClearExpectations(po.get());
  }
}

}  // namespace
}  // namespace kxui
