// SPDX-License-Identifier: MIT
#ifndef ORB_HTTP_QX_HTTP_CLIENT_CONFIG_H_
#define ORB_HTTP_QX_HTTP_CLIENT_CONFIG_H_

#include <string>

#include "http/qx_client_config.h"

namespace orb {

/// Holds the settings by value. Nothing is checked here: libcurl judges them when a
/// client is built and when it connects.
class QXHttpClientConfig : public QXClientConfig {
 public:
  QXHttpClientConfig() = default;
  explicit QXHttpClientConfig(const QXClientConfig& other);

  void setTimeoutSec(uint64_t timeoutSec) override { timeoutSec_ = timeoutSec; }
  uint64_t getTimeoutSec() const override { return timeoutSec_; }
  void setResponseSizeLimit(uint32_t limitBytes) override {
    responseSizeLimit_ = limitBytes;
  }
  uint32_t getResponseSizeLimit() const override { return responseSizeLimit_; }
  void setClientCertFile(const char* file) override { clientCertFile_ = textOf(file); }
  const char* getClientCertFile() const override { return clientCertFile_.c_str(); }
  void setClientPrivateKeyFile(const char* file) override {
    clientPrivateKeyFile_ = textOf(file);
  }
  const char* getClientPrivateKeyFile() const override {
    return clientPrivateKeyFile_.c_str();
  }
  void setClientPrivateKeyPassword(const char* password) override {
    clientPrivateKeyPassword_ = textOf(password);
  }
  const char* getClientPrivateKeyPassword() const override {
    return clientPrivateKeyPassword_.c_str();
  }
  void setServerCertFile(const char* file) override { serverCertFile_ = textOf(file); }
  const char* getServerCertFile() const override { return serverCertFile_.c_str(); }
  void setCRLFile(const char* file) override { crlFile_ = textOf(file); }
  const char* getCRLFile() const override { return crlFile_.c_str(); }
  void setVerifyHost(bool verify) override { verifyHost_ = verify; }
  bool getVerifyHost() const override { return verifyHost_; }
  void setVerifyPeer(bool verify) override { verifyPeer_ = verify; }
  bool getVerifyPeer() const override { return verifyPeer_; }

 private:
  /// Null reads as "".
  static const char* textOf(const char* text) { return text == nullptr ? "" : text; }

  uint64_t timeoutSec_ = 120;
  uint32_t responseSizeLimit_ = 64u << 20;  // bytes
  std::string clientCertFile_;
  std::string clientPrivateKeyFile_;
  std::string clientPrivateKeyPassword_;
  std::string serverCertFile_;
  std::string crlFile_;
  bool verifyHost_ = true;
  bool verifyPeer_ = true;
};

}  // namespace orb

#endif  // ORB_HTTP_QX_HTTP_CLIENT_CONFIG_H_
