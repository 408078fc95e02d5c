// SPDX-License-Identifier: MIT
// What the server answers on the level of HTTP.
#include <gmock/gmock.h>

#include "orbserve/service.h"

namespace orb::test {
namespace {

struct Answer {
  int status;
  std::string text;
};

bool operator==(const Answer& left, const Answer& right) {
  return left.status == right.status && left.text == right.text;
}

std::ostream& operator<<(std::ostream& out, const Answer& answer) {
  return out << answer.status << " " << answer.text;
}

Answer answerOf(const httplib::Result& reply) {
  if (!reply) return {0, to_string(reply.error())};
  return {reply->status, reply->body};
}

/// A server that takes bodies of 100 bytes.
ServerProcess& smallServer() {
  static ServerProcess server({ORBSERVE_PATH, "--max-body", "100", "--threads", "2"});
  return server;
}

httplib::Result postChunks(const std::string& url, const std::string& path,
                           const std::string& chunk, int count) {
  httplib::Client client(url);
  return client.Post(
      path,
      [&](size_t, httplib::DataSink& sink) {
        for (int i = 0; i < count; ++i) sink.write(chunk.data(), chunk.size());
        sink.done();
        return true;
      },
      kMessageType);
}

TEST(Post, IsAnsweredWithAMessage) {
  const httplib::Result reply =
      connection().Post("/demo/sum", body(1, {scalar(2)}), kMessageType);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->status, 200);
  EXPECT_EQ(reply->get_header_value("Content-Type"), kMessageType);
  EXPECT_EQ(reply->get_header_value("Content-Length"),
            std::to_string(reply->body.size()));
}

TEST(Post, TakesChunks) {
  const httplib::Result reply =
      postChunks(sharedServer().url(), "/demo/echo", body(1, {scalar(2)}), 1);
  ASSERT_TRUE(reply);
  EXPECT_EQ(reply->status, 200);
  Result result;
  ASSERT_TRUE(result.ParseFromString(reply->body));
  EXPECT_THAT(elementsOf(result.lhs(0)), ::testing::ElementsAre(2));
}

class UnknownPath : public ::testing::TestWithParam<std::string> {};

TEST_P(UnknownPath, IsNotFound) {
  EXPECT_EQ(answerOf(connection().Post(GetParam(), body(0, {}), kMessageType)),
            (Answer{404, "orbserve: no function at " + GetParam() + "\n"}));
}

INSTANTIATE_TEST_SUITE_P(Paths, UnknownPath,
                         ::testing::Values("/demo/nosuch", "/demo/", "/demo", "/", "/sum",
                                           "/demo/sum/", "/other/sum",
                                           "/" + std::string(8000, 'a')));

class Unparsable : public ::testing::TestWithParam<std::string> {};

TEST_P(Unparsable, IsABadRequest) {
  EXPECT_EQ(answerOf(connection().Post("/demo/echo", GetParam(), kMessageType)),
            (Answer{400, "orbserve: the body is not a KALDEX_Params message\n"}));
}

std::string nestedCells(int depth) {
  Array array = bare(Array::CELL, {0, 0});
  for (int i = 1; i < depth; ++i) {
    Array outer = bare(Array::CELL, {1, 1});
    outer.mutable_cell()->add_elements()->Swap(&array);
    array.Swap(&outer);
  }
  return body(1, {array});
}

std::string invalidUtf8() {
  Array array = bare(Array::STRUCT, {0, 0});
  array.mutable_struct_()->add_field_names("FIELD");
  std::string bytes = body(1, {array});
  bytes[bytes.find("FIELD")] = '\xff';
  return bytes;
}

INSTANTIATE_TEST_SUITE_P(Bodies, Unparsable,
                         ::testing::Values("\xff\xff", std::string(1, '\0'),
                                           body(1, {scalar(1)}).substr(0, 9),
                                           invalidUtf8(), nestedCells(51)));

TEST(NestedCells, AreReturnedUpToTheLimitOfTheFormat) {
  const Result result = post("echo", nestedCells(50));
  ASSERT_EQ(result.lhs_size(), 1) << result.error().message();
  EXPECT_EQ(body(1, {result.lhs(0)}), nestedCells(50));
}

TEST(LongBody, IsRefused) {
  httplib::Client client(smallServer().url());
  client.set_keep_alive(true);
  const Array fits = bare(Array::CHAR, {0, 0});
  EXPECT_EQ(answerOf(client.Post("/demo/echo", std::string(101, 'x'), kMessageType)),
            (Answer{413, "orbserve: expected a body of at most 100 bytes\n"}));
  EXPECT_EQ(client.Post("/demo/echo", body(1, {fits}), kMessageType)->status, 200)
      << "on the same connection";
}

TEST(LongBody, IsRefusedInChunksToo) {
  EXPECT_EQ(
      answerOf(postChunks(smallServer().url(), "/demo/echo", std::string(60, 'x'), 2)),
      (Answer{413, "orbserve: expected a body of at most 100 bytes\n"}));
}

TEST(LongBody, OfExactlyTheLimitIsRead) {
  httplib::Client client(smallServer().url());
  EXPECT_EQ(client.Post("/demo/echo", std::string(100, '\xff'), kMessageType)->status,
            400);
}

TEST(LongBody, HasADefaultLimitOf64Mebibytes) {
  EXPECT_EQ(answerOf(connection().Post("/demo/echo", std::string((64u << 20) + 1, 'x'),
                                       kMessageType)),
            (Answer{413, "orbserve: expected a body of at most 67108864 bytes\n"}));
}

TEST(OtherMethods, AreRefused) {
  httplib::Client client = connection();
  client.set_keep_alive(true);
  EXPECT_EQ(answerOf(client.Get("/demo/sum")),
            (Answer{405, "orbserve: expected POST, got GET\n"}));
  EXPECT_EQ(answerOf(client.Put("/demo/sum", "body", kMessageType)),
            (Answer{405, "orbserve: expected POST, got PUT\n"}));
  EXPECT_EQ(answerOf(client.Patch("/demo/sum", "body", kMessageType)),
            (Answer{405, "orbserve: expected POST, got PATCH\n"}));
  EXPECT_EQ(answerOf(client.Delete("/demo/sum", "body", kMessageType)),
            (Answer{405, "orbserve: expected POST, got DELETE\n"}));
  EXPECT_EQ(client.Options("/demo/sum")->get_header_value("Allow"), "POST");
}

TEST(Multipart, IsRefused) {
  const httplib::MultipartFormDataItems items = {{"name", "content", "", ""}};
  EXPECT_EQ(answerOf(connection().Post("/demo/sum", items)),
            (Answer{415, "orbserve: expected application/x-google-protobuf\n"}));
}

TEST(Connection, CarriesThousandsOfCalls) {
  httplib::Client client = connection();
  client.set_keep_alive(true);
  const std::string bytes = body(1, {scalar(2)});
  for (int i = 0; i < 3000; ++i) {
    const httplib::Result reply = client.Post("/demo/echo", bytes, kMessageType);
    ASSERT_EQ(reply->status, 200) << i;
    ASSERT_EQ(reply->get_header_value("Connection"), "") << i;
  }
}

TEST(Connection, ServesOthersAtTheSameTime) {
  httplib::Client idle(smallServer().url());
  idle.set_keep_alive(true);
  ASSERT_EQ(idle.Post("/demo/echo", body(0, {}), kMessageType)->status, 200);
  httplib::Client other(smallServer().url());
  EXPECT_EQ(other.Post("/demo/echo", body(0, {}), kMessageType)->status, 200);
}

}  // namespace
}  // namespace orb::test
