// What stands in the page's global scope besides the browser's own.

interface TamzoSettings {
  start?: string;
  autoplay?: string;
  session?: string;
  wrappers?: string;
  macros?: { [name: string]: string };
  limits?: { [name: string]: number };
}

interface TamzoAd {
  start(): void;
  pause(): void;
  resume(): void;
  skip(): void;
  stop(): void;
  call(method: string, ...parameters: unknown[]): unknown;
}

interface Window {
  tamzoSettings?: TamzoSettings;
  tamzoAd: TamzoAd;
  webkit?: { messageHandlers?: { tamzo?: { postMessage(message: object): void } } };
  TamzoBridge?: { onEvent(name: string, json: string): void };
  getVPAIDAd?: () => unknown;
}
