// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_QX_HTTP_CLIENT_H_
#define ORB_HTTP_QX_HTTP_CLIENT_H_

#include <boost/shared_ptr.hpp>

#include "http/byte_block.h"
#include "http/qx_client.h"
#include "http/qx_http_client_config.h"

namespace orb {

/// A client over one libcurl handle, which keeps connections alive between requests.
class QXHttpClient : public QXClient {
 public:
  QXHttpClient() : QXHttpClient(QXHttpClientConfig()) {}
  /// Copies the settings. Throws std::runtime_error when libcurl refuses one.
  explicit QXHttpClient(const QXClientConfig& config);

  std::unique_ptr<Request> createRequest(const std::string& url) override;
  QXClientConfig& getConfig() override { return config_; }

  /// Initialises libcurl for the process; throws std::runtime_error.
  static void initializeGlobally();
  static void cleanUpGlobally();

 private:
  void applyConfig();
  void forgetResentRequests();

  QXHttpClientConfig config_;
  boost::shared_ptr<void> handle_;
  bool isConfigured_ = true;                // the handle has all settings
  boost::shared_ptr<KeptBlock> bodyBlock_;  // kept between requests
};

}  // namespace orb

#endif  // ORB_HTTP_QX_HTTP_CLIENT_H_
