// The web around the page: four hosts on loopback, each an origin of its own, that speak HTTP and
// TLS on one port. Every request is noted.

import { execFileSync } from "node:child_process";
import { once } from "node:events";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createServer as createHttpServer } from "node:http";
import { createServer as createHttpsServer } from "node:https";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";

const HOSTS = { page: "127.0.0.1", tag: "127.0.0.2", unit: "127.0.0.3", pixel: "127.0.0.4" };
const TLS_HANDSHAKE = 0x16;  // the first byte of a connection that is to be encrypted

function makeCertificate() {
  const folder = mkdtempSync(join(tmpdir(), "vpaid-page-"));
  const [key, cert] = [join(folder, "key.pem"), join(folder, "cert.pem")];
  try {
    execFileSync("openssl", ["req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256",
      "-nodes", "-days", "2", "-subj", "/CN=localhost", "-keyout", key, "-out", cert],
    { stdio: "ignore" });
    return { key: readFileSync(key), cert: readFileSync(cert) };
  } finally {
    rmSync(folder, { recursive: true });
  }
}

export class Server {
  constructor() {
    this.bodies = new Map();   // path -> { body, type }
    this.delayOf = () => 0;    // of the answer to a path, in milliseconds
    this.answered = new Set();
    this.requests = [];        // paths in the order of arrival
    this.watchers = new Set();
    this.takers = new Map();   // path -> who takes what is posted there
    this.served = 0;
    this.listeners = [];
  }

  async start() {
    const answer = (request, response) => this.answer(request, response);
    this.plain = createHttpServer(answer);
    this.secure = createHttpsServer(makeCertificate(), answer);
    for (const host of Object.values(HOSTS)) {
      const listener = createServer((socket) => this.route(socket));
      listener.listen(this.port || 0, host);
      await once(listener, "listening");
      this.port = listener.address().port;
      this.listeners.push(listener);
    }
  }

  stop() {
    this.listeners.forEach((listener) => listener.close());
    this.plain.closeAllConnections();
    this.secure.closeAllConnections();
  }

  route(socket) {
    socket.on("error", () => {});
    socket.once("data", (bytes) => {
      socket.pause();
      const server = bytes[0] === TLS_HANDSHAKE ? this.secure : this.plain;
      server.emit("connection", socket);
      socket.unshift(bytes);
      process.nextTick(() => socket.resume());
    });
  }

  answer(request, response) {
    if (request.method === "POST") {
      this.takePost(request, response);
      return;
    }
    const path = request.url;
    this.requests.push(path);
    this.watchers.forEach((look) => look());
    const { body, type } = this.bodies.get(path) ||
      { body: path.startsWith("/served/") ? undefined : "", type: "text/plain" };
    const reply = () => {
      this.answered.add(path);
      response.writeHead(body === undefined ? 404 : 200,
        { "Access-Control-Allow-Origin": "*", "Content-Type": type, "Cache-Control": "max-age=60" });
      response.end(body);
    };
    const delay = this.delayOf(path);
    if (delay) {
      setTimeout(reply, delay).unref();
    } else {
      reply();
    }
  }

  takePost(request, response) {
    const pieces = [];
    request.on("data", (piece) => pieces.push(piece));
    request.on("end", () => {
      response.writeHead(204, { "Access-Control-Allow-Origin": "*" });
      response.end();
      this.takers.get(request.url)(JSON.parse(Buffer.concat(pieces).toString()));
    });
  }

  urlOf(host, path, scheme = "http") {
    return `${scheme}://${HOSTS[host] || host}:${this.port}${path}`;
  }

  serve(host, body, { type = "text/plain" } = {}) {
    const path = `/served/${++this.served}`;
    this.bodies.set(path, { body, type });
    return this.urlOf(host, path);
  }

  // Resolves when `accepts()`, which is asked after each request.
  whenRequested(accepts) {
    return new Promise((resolve) => {
      const look = () => {
        if (accepts()) {
          this.watchers.delete(look);
          resolve();
        }
      };
      this.watchers.add(look);
      look();
    });
  }
}
